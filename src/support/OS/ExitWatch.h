#pragma once

#include "support/OS/Descriptor.h"
#include "support/OS/SignalMask.h"

#include <csignal>

namespace quillstead::OS {

/// Lets a poll loop wait for the end of a child process: the descriptor becomes readable when a
/// child has ended, even if the process was started with SIGCHLD ignored or blocked. Create it
/// before the child is started; only one may exist at a time.
class ExitWatch {
 public:
  /// `wake`: a pipe that only the watch uses.
  explicit ExitWatch(Pipe wake);
  ExitWatch(const ExitWatch&) = delete;
  ExitWatch& operator=(const ExitWatch&) = delete;
  ~ExitWatch();

  [[nodiscard]] int descriptor() const { return wake_.reading.number(); }

  /// Clears the descriptor, so that it waits for the next end.
  void acknowledge() const;

 private:
  Pipe wake_;
  struct sigaction actionBefore_ {};
  SignalMask unblocked_;
};

}  // namespace quillstead::OS
