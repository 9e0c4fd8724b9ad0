#include "support/OS/SignalMask.h"

namespace quillstead::OS {

namespace {

sigset_t setOf(std::span<const int> signals) {
  sigset_t set{};
  sigemptyset(&set);
  for (const int signal : signals) sigaddset(&set, signal);
  return set;
}

}  // namespace

SignalMask::SignalMask(Change change, std::span<const int> signals) {
  const sigset_t set = setOf(signals);
  pthread_sigmask(change == Change::block ? SIG_BLOCK : SIG_UNBLOCK, &set, &before_);
}

SignalMask::~SignalMask() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

void unblock(std::span<const int> signals) {
  const sigset_t set = setOf(signals);
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

}  // namespace quillstead::OS
