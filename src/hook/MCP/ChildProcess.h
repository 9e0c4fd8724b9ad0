#pragma once

#include "hook/Budget.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>

namespace quillstead::hook {

/// The child ended in time, by itself or by a signal that we did not send. Buffers hold raw bytes.
struct Exited {
  std::int32_t status;  ///< exit code, or the negated number of the signal that ended it
  std::string standardOutput;
  std::string standardError;
};

/// The leash ran out and we killed the child. Its standard output is discarded.
struct TimedOut {
  std::string standardError;
};

/// No child was started: no such file, a bare name, not executable, or no process available.
struct NotSpawned {};

using ChildOutcome = std::variant<Exited, TimedOut, NotSpawned>;

namespace ChildProcess {

/// The most bytes that we keep of each output stream. A child that writes more waits until its
/// leash runs out.
inline constexpr std::size_t longestOutput = std::size_t{64} * 1024 * 1024;

struct Task {
  std::string executable;  ///< a path with a "/" in it, which may be relative
  std::string_view input;  ///< all of standard input, which is then closed
  Seconds leash;           ///< how long the child may run, from its start
  std::function<void()>
      firstOutput;  ///< called once, when the first output was stored; may be empty
};

/// Runs one child to its end, or kills it (SIGKILL) when the leash runs out. It gets no arguments,
/// our environment and directory, default signal handling, and three pipes and no other descriptor.
///
/// Blocks for at most the leash, with one exception: the output of a child that ended in time is
/// read to its end, even if a process that the child left behind keeps it open for longer.
ChildOutcome run(const Task& task);

}  // namespace ChildProcess
}  // namespace quillstead::hook
