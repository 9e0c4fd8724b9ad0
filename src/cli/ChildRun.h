#pragma once

#include "support/OS/Environment.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// How to start a program as a child process.
struct ChildStart {
  std::vector<std::string> command;      ///< the program's path, then its arguments
  std::vector<std::string> environment;  ///< "NAME=value", all of it
  std::string directory;                 ///< its working directory; empty: ours
  std::string input;                     ///< its standard input
  std::chrono::milliseconds limit;       ///< how long it may run before it is killed

  /// Whether the output is enough; the program is then killed. Empty: it exits by itself. Its input
  /// stays open while it runs.
  std::function<bool(std::string_view output)> isEnough = {};
};

/// How it ended.
struct ChildEnd {
  enum class How {
    exited,      ///< by itself; `status` is its exit status
    signalled,   ///< by a signal, whose number `status` is
    enough,      ///< killed because its output was enough
    timedOut,    ///< killed when its time was up
    notStarted,  ///< no process was created; `status` is the error number
  };

  How how;
  int status;
  std::string output;  ///< at most a few megabytes
  std::string error;   ///< the same
  std::chrono::milliseconds took;

  [[nodiscard]] bool isSuccess() const { return how == How::exited && status == 0; }
};

namespace ChildRun {

/// Runs a program to its end, in its own process group, which is killed as a whole. Blocks for at
/// most the limit and a few milliseconds. The program inherits our descriptors that are not closed
/// on exec.
ChildEnd run(const ChildStart& start);

/// The environment with `changes` applied. A change without "=" removes the variable.
std::vector<std::string> changed(const OS::Environment& environment,
                                 const std::vector<std::string>& changes);

}  // namespace ChildRun
}  // namespace quillstead::cli
