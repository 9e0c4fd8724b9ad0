#pragma once

#include "unit/helpers/Files.h"

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server::test {

/// How a program is started: its input is all there, and ends.
struct ProgramStart {
  std::string executable;
  std::vector<std::string> arguments;
  std::vector<std::string> environment;  ///< all of it, "NAME=value"
  std::string input;
};

/// How it ended.
struct ProgramEnd {
  std::string output;
  std::string error;
  std::optional<int> status;  ///< absent when a signal ended it
};

/// One process. Several may run at once.
class ProgramRun {
 public:
  explicit ProgramRun(const ProgramStart& start);
  ProgramRun(ProgramRun&& other) noexcept;
  ProgramRun& operator=(ProgramRun&&) = delete;
  ProgramRun(const ProgramRun&) = delete;
  ProgramRun& operator=(const ProgramRun&) = delete;
  ~ProgramRun();

  void kill() const;

  /// Waits for its end.
  ProgramEnd finish();

 private:
  std::string directory_;  ///< holds its streams
  pid_t process_ = -1;
};

/// The programs that were built with the tests.
std::string serverProgram();
std::string hookProgram();

}  // namespace quillstead::server::test
