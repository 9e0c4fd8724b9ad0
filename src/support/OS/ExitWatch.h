#pragma once

#include "support/OS/Descriptor.h"
#include "support/OS/SignalMask.h"

#include <csignal>

namespace quillstead::OS {

/// Makes the end of a child process something a poll loop can wait for: while it lives, its
/// descriptor becomes readable whenever a child has ended, also when the process was started with
/// SIGCHLD ignored or blocked. Create it before the child is started; one at a time.
class ExitWatch {
 public:
  /// `wake`: a pipe for the watch's own use.
  explicit ExitWatch(Pipe wake);
  ExitWatch(const ExitWatch&) = delete;
  ExitWatch& operator=(const ExitWatch&) = delete;
  ~ExitWatch();

  [[nodiscard]] int descriptor() const { return wake_.reading.number(); }

  /// Takes note of the ends so far, so that the descriptor waits for the next.
  void acknowledge() const;

 private:
  Pipe wake_;
  struct sigaction actionBefore_ {};
  SignalMask unblocked_;
};

}  // namespace quillstead::OS
