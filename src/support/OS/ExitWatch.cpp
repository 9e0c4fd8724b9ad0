#include "support/OS/ExitWatch.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>

namespace quillstead::OS {

namespace {

constexpr std::array watchedSignals{SIGCHLD};

// Read by the signal handler: lock-free, and set before the handler is installed.
std::atomic<int> wakeDescriptor{-1};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void wakePollLoop(int /*signal*/) {
  const int errorBefore = errno;
  [[maybe_unused]] const ssize_t written = ::write(wakeDescriptor.load(), "", 1);
  errno = errorBefore;
}

struct sigaction installWake(const Pipe& wake) {
  makeNonBlocking(wake.reading);
  makeNonBlocking(wake.writing);
  wakeDescriptor.store(wake.writing.number());
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = wakePollLoop;
  action.sa_flags = SA_NOCLDSTOP | SA_ONSTACK;
  sigemptyset(&action.sa_mask);
  sigaction(SIGCHLD, &action, &before);
  return before;
}

}  // namespace

ExitWatch::ExitWatch(Pipe wake)
    : wake_(std::move(wake)),
      actionBefore_(installWake(wake_)),
      unblocked_(SignalMask::Change::unblock, watchedSignals) {}

ExitWatch::~ExitWatch() {
  sigaction(SIGCHLD, &actionBefore_, nullptr);
  wakeDescriptor.store(-1);
}

void ExitWatch::acknowledge() const {
  // Read again only after a full buffer, so that this never waits, even if the pipe could not be
  // made non-blocking.
  std::array<char, 4096> noted;
  while (read(descriptor(), noted.data(), noted.size()).count == noted.size()) {
  }
}

}  // namespace quillstead::OS
