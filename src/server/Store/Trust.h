#pragma once

#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillstead::server {

/// The directories whose projects may speak to the agent, because the user said so. A project in
/// one of them, or anywhere below it, is trusted.
class Trust {
 public:
  /// One thing that the user said.
  struct Entry {
    enum class Source { file, environment };

    std::string directory;  ///< its canonical path
    Source source;
  };

  /// Reads the file `trusted` of the personal directory, one canonical path a line, and the
  /// variable QUILLSTEAD_TRUST, paths with colons between. An empty or relative entry trusts
  /// nothing. The file counts only when it and its directory are the user's own, and lie in no
  /// project; standard error tells when it does not.
  static Trust read(const OS::Environment& environment);

  /// In the order in which they were said, the file's first.
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }

  /// The trusted directory that `path`, a canonical one, is or lies in; absent when there is none.
  [[nodiscard]] std::optional<std::string> coverOf(std::string_view path) const;

  /// Why nothing was changed, for the user's eyes, without a full stop.
  struct Refused {
    std::string reason;
  };

  /// What came of a change, and which path it was about.
  struct Changed {
    std::string directory;
    bool wasSo;  ///< nothing was written
  };
  using Outcome = std::variant<Changed, Refused>;

  /// Writes the directory into the file, or removes it. Several processes may do so at once; who
  /// reads sees the file before or after. A project's own `.quillstead` stands for its project.
  static Outcome add(const OS::Environment& environment, const std::string& directory);

  /// `directory` may be gone. What the environment trusts stays so, and so does what lies in
  /// another trusted directory: read again to see.
  static Outcome revoke(const OS::Environment& environment, const std::string& directory);

 private:
  std::vector<Entry> entries_;
};

}  // namespace quillstead::server
