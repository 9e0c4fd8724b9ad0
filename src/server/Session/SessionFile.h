#pragma once

#include "server/Session/SessionState.h"
#include "support/OS/Descriptor.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead::server {

/// The file with a session's state, in the cache directory. It is locked, so that no other server
/// reads or writes it meanwhile.
class SessionFile {
 public:
  /// Waits for other servers for at most a fifth of a second. Absent when that was too short, or
  /// when there is no place for the file. `session`: identifies the session.
  ///
  /// When it creates a file, it also removes those that were not written for a week.
  static std::optional<SessionFile> opened(std::string_view session,
                                           const OS::Environment& environment);

  /// The file's content; absent when it is new or damaged.
  [[nodiscard]] std::optional<SessionState> read() const;

  /// If this fails, or the process is killed meanwhile, the file may count as damaged.
  void write(const SessionState& state) const;

 private:
  explicit SessionFile(OS::Descriptor file) : file_(std::move(file)) {}

  OS::Descriptor file_;
};

}  // namespace quillstead::server
