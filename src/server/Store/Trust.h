#pragma once

#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillstead::server {

/// The directories that the user trusts. The files of a project in or below one of them may reach
/// the agent.
class Trust {
 public:
  /// One trusted directory.
  struct Entry {
    enum class Source { file, environment };

    std::string directory;  ///< its canonical path
    Source source;
  };

  /// Reads the file `trusted` in the personal directory (one canonical path a line) and the
  /// variable QUILLSTEAD_TRUST (paths separated by colons). Empty and relative entries are ignored.
  /// The file counts only if it and its directory are the user's own and not in a project;
  /// otherwise a message on standard error says why.
  static Trust read(const OS::Environment& environment);

  /// In their order, the file's first.
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }

  /// The trusted directory that is `path` (canonical) or above it; absent when there is none.
  [[nodiscard]] std::optional<std::string> coverOf(std::string_view path) const;

  /// Why nothing was changed, for the user, without a full stop.
  struct Refused {
    std::string reason;
  };

  /// The result of a change, and the path that was changed.
  struct Changed {
    std::string directory;
    bool wasSo;  ///< it was so before; nothing was written
  };
  using Outcome = std::variant<Changed, Refused>;

  /// Adds the directory to the file, or removes it. Several processes may do so at once; readers
  /// see the file before or after a change. A project's `.quillstead` counts as the project.
  static Outcome add(const OS::Environment& environment, const std::string& directory);

  /// `directory` need not exist any more. It may still be trusted afterwards, by the environment or
  /// because a directory above it is trusted: read again to find out.
  static Outcome revoke(const OS::Environment& environment, const std::string& directory);

 private:
  std::vector<Entry> entries_;
};

}  // namespace quillstead::server
