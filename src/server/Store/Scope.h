#pragma once

#include "server/UserPlaces.h"
#include "support/OS/Descriptor.h"
#include "support/OS/Environment.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

/// One directory of memory: `rules.md`, and `memory/` with one card per file.
struct Store {
  /// In the order in which equal cards rank. Indexes store the numbers.
  enum class Kind { project = 0, personal = 1 };

  Kind kind;
  std::string root;  ///< absolute; every link followed when it exists

  /// The directory, kept open since its owner and mode were checked, so that it cannot be replaced;
  /// null when it did not exist.
  std::shared_ptr<const OS::Descriptor> directory = nullptr;
};

/// "project" or "personal", as users and agents write it.
std::string_view nameOf(Store::Kind kind);

/// A project's store that exists, but is not used.
struct SkippedStore {
  enum class Why { someoneElses, everybodys, linkOut, unreadable };

  std::string path;  ///< as it was found
  Why why;
};

/// The same as a text for the user: "it belongs to another user".
std::string_view explained(SkippedStore::Why why);

/// The stores that one call uses.
struct Scope {
  std::optional<Store> personal;  ///< may not exist yet; absent when no place for it is known
  std::optional<Store> project;   ///< absent when the working directory is in no trusted project
  bool projectLeftOut = false;    ///< a project store exists, but is not trusted
  std::vector<SkippedStore> skipped = {};  ///< in or above the working directory, the nearest first

  /// All of them, the personal one first.
  [[nodiscard]] std::vector<Store> stores() const;

  /// `cwd`: the call's working directory; when absent, the process's own.
  static Scope find(const OS::Environment& environment, std::optional<std::string_view> cwd);
};

/// The note about a project that is left out. It contains nothing from the project.
inline constexpr std::string_view projectLeftOutNote =
    "(This project has a memory store of its own, which is left out because the user has not "
    "trusted it. To use it, the user can run `quillstead trust` in the project.)";

}  // namespace quillstead::server
