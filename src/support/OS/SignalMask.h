#pragma once

#include <csignal>
#include <span>

namespace quillstead::OS {

/// Blocks or unblocks signals for its lifetime and puts the thread's mask back as it was.
class SignalMask {
 public:
  enum class Change { block, unblock };

  SignalMask(Change change, std::span<const int> signals);
  SignalMask(const SignalMask&) = delete;
  SignalMask& operator=(const SignalMask&) = delete;
  ~SignalMask();

 private:
  sigset_t before_{};
};

/// Unblocks signals for good.
void unblock(std::span<const int> signals);

}  // namespace quillstead::OS
