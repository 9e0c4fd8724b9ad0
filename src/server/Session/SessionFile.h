#pragma once

#include "server/Session/SessionState.h"
#include "support/OS/Descriptor.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead::server {

/// The file of the cache directory in which a session's state lies, held so that no other server
/// reads or writes it meanwhile.
class SessionFile {
 public:
  /// Waits for other servers for a fifth of a second at most. Absent when that was too short, or
  /// when there is no place for the file. `session`: what tells this session from all others.
  ///
  /// A new file is an occasion to remove those that nobody wrote for a week.
  static std::optional<SessionFile> opened(std::string_view session,
                                           const OS::Environment& environment);

  /// What the file holds; absent when it is new or damaged.
  [[nodiscard]] std::optional<SessionState> read() const;

  /// Should this fail, or the process be killed on the way, the file counts as damaged.
  void write(const SessionState& state) const;

 private:
  explicit SessionFile(OS::Descriptor file) : file_(std::move(file)) {}

  OS::Descriptor file_;
};

}  // namespace quillstead::server
