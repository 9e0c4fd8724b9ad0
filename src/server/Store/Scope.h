#pragma once

#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

/// One directory of memory: `rules.md`, and `memory/` with one card a file.
struct Store {
  enum class Kind { project, personal };  ///< in the order in which equal cards rank

  Kind kind;
  std::string root;  ///< absolute; every link followed when it exists
};

/// "project" or "personal", as users and agents write it.
std::string_view nameOf(Store::Kind kind);

/// The stores that one call is about.
struct Scope {
  std::optional<Store> personal;  ///< may not exist yet; absent when there is no home directory
  std::optional<Store> project;   ///< absent when the working directory is in no project

  /// Those there are, the personal one first.
  [[nodiscard]] std::vector<Store> stores() const;

  /// `cwd`: the call's working directory; when absent, the process's own.
  static Scope find(const OS::Environment& environment, std::optional<std::string_view> cwd);
};

/// The user's home directory: HOME, or what the system says when it is unset or empty.
std::string homeDirectory(const OS::Environment& environment);

}  // namespace quillstead
