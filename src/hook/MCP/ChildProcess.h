#pragma once

#include "hook/Budget.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>

namespace quillstead::hook {

/// The child ended by itself, or by somebody else's signal, in time. Buffers hold raw bytes.
struct Exited {
  std::int32_t status;  ///< exit code, or the negated number of the signal that ended it
  std::string standardOutput;
  std::string standardError;
};

/// The leash ran out and the child was killed. What it had written to standard output is discarded.
struct TimedOut {
  std::string standardError;
};

/// No child ever existed: no such file, a bare name, not executable, or no process to be had.
struct NotSpawned {};

using ChildOutcome = std::variant<Exited, TimedOut, NotSpawned>;

namespace ChildProcess {

/// Of each of its streams, the hook keeps this many bytes; a child that writes more is left waiting
/// for its leash to run out.
inline constexpr std::size_t longestOutput = std::size_t{64} * 1024 * 1024;

struct Task {
  std::string executable;  ///< a path with a "/" in it, which may be relative
  std::string_view input;  ///< all that the child gets on standard input, which is then closed
  Seconds leash;           ///< how long the child may live, counted from when it was started
  std::function<void()>
      firstOutput;  ///< called once, when the first output was stored; may be empty
};

/// Runs one child to its end, or kills it (SIGKILL) when the leash runs out. It gets no arguments,
/// our environment and directory, default signal handling, and three pipes and no other descriptor.
///
/// Blocks for at most the leash; but the output of a child that ended in time is read to its end,
/// however long a process that it left behind keeps it open.
ChildOutcome run(const Task& task);

}  // namespace ChildProcess
}  // namespace quillstead::hook
