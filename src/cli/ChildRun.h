#pragma once

#include "support/OS/Environment.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// How a program is started as a child of ours.
struct ChildStart {
  std::vector<std::string> command;      ///< the program's path, then its arguments
  std::vector<std::string> environment;  ///< "NAME=value", all of it
  std::string directory;                 ///< where it runs; empty: where we do
  std::string input;                     ///< all that it gets on standard input
  std::chrono::milliseconds limit;       ///< how long it may run before it is killed

  /// Whether all that was wanted has been written; it is then killed. Empty: it ends by itself. Its
  /// input stays open as long as it runs.
  std::function<bool(std::string_view output)> isEnough = {};
};

/// How it ended.
struct ChildEnd {
  enum class How {
    exited,      ///< by itself; `status` is its exit status
    signalled,   ///< by a signal, whose number `status` is
    enough,      ///< killed because it had written what was wanted
    timedOut,    ///< killed after its time
    notStarted,  ///< there was no process; `status` is the error number
  };

  How how;
  int status;
  std::string output;  ///< at most some megabytes
  std::string error;   ///< likewise
  std::chrono::milliseconds took;

  [[nodiscard]] bool isSuccess() const { return how == How::exited && status == 0; }
};

namespace ChildRun {

/// Runs a program to its end, in a process group of its own, which is killed as a whole. Blocks for
/// at most the limit and some milliseconds. The program keeps those descriptors of ours that are
/// not closed on exec.
ChildEnd run(const ChildStart& start);

/// An environment as entries, with those of `changes` set instead; a change without "=" takes the
/// variable away.
std::vector<std::string> changed(const OS::Environment& environment,
                                 const std::vector<std::string>& changes);

}  // namespace ChildRun
}  // namespace quillstead::cli
