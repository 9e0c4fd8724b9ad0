#pragma once

#include "support/OS/SignalMask.h"

#include <atomic>
#include <cstddef>
#include <optional>
#include <string_view>

/// Prints the run's one answer, and turns a fatal fault into the neutral one: the silence is
/// written to standard output unless an answer already was, and the process ends with status 0.
namespace quillstead::hook::FailOpenBelt {

/// The longest silence, in bytes, that the belt can hold ready.
inline constexpr std::size_t longestSilence = 1023;

/// True once the run's one answer was printed: from then on a fault ends the process without a
/// word.
inline std::atomic<bool> answered{false};

/// Puts the belt on: makes `silence` and its line end ready and installs the handlers of SIGILL,
/// SIGTRAP, SIGSEGV, SIGBUS, SIGFPE and SIGABRT. Needs no memory. Does nothing when the silence is
/// absent, longer than `longestSilence`, or the belt is already on.
void arm(std::optional<std::string_view> silence);

/// Installs the belt's handler for one signal.
void installHandler(int signal);

/// Makes running out of memory, and an exception nobody catches, end the process as a fault does:
/// with the silence that `arm` made ready, or with nothing when there is none.
void endQuietlyOnFailure();

/// Prints the run's one answer and a line end, in one write where the system takes it at once, and
/// notes that it was printed. A harness that no longer listens is no error.
void answer(std::string_view document);

/// Keeps the fault signals waiting while an answer is printed and noted as printed, so that no
/// fault can come between the two. Does nothing while the belt is off: no fault is answered then.
class Pause {
 public:
  Pause();

 private:
  std::optional<OS::SignalMask> blocked_;
};

}  // namespace quillstead::hook::FailOpenBelt
