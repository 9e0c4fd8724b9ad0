#pragma once

#include "support/OS/SignalMask.h"

#include <atomic>
#include <cstddef>
#include <optional>
#include <string_view>

/// Prints the run's one answer. After a fatal fault it prints the silence instead, unless an answer
/// was printed already, and the process exits with status 0.
namespace quillstead::hook::FailOpenBelt {

/// The longest silence that the belt can store, in bytes.
inline constexpr std::size_t longestSilence = 1023;

/// True once the answer was printed. After that, a fault ends the process without further output.
inline std::atomic<bool> answered{false};

/// Puts the belt on: stores `silence` and a line end, and installs the handlers for SIGILL,
/// SIGTRAP, SIGSEGV, SIGBUS, SIGFPE and SIGABRT. Allocates no memory. Does nothing when the silence
/// is absent or longer than `longestSilence`, or when the belt is already on.
void arm(std::optional<std::string_view> silence);

/// Installs the belt's handler for one signal.
void installHandler(int signal);

/// Handles running out of memory and uncaught exceptions like a fault: prints the silence that
/// `arm` stored, if any, and ends the process.
void endQuietlyOnFailure();

/// Prints the run's one answer and a line end, in one write if possible, and records that it was
/// printed. It is no error when the harness has closed the pipe.
void answer(std::string_view document);

/// The same as the last thing a run does: ends the process with status 0 before a fault can come in
/// between.
[[noreturn]] void answerAndEnd(std::string_view document);

/// Blocks the fault signals while an answer is printed and recorded as printed, so that no fault is
/// handled between the two. Does nothing while the belt is off.
class Pause {
 public:
  Pause();

 private:
  std::optional<OS::SignalMask> blocked_;
};

}  // namespace quillstead::hook::FailOpenBelt
