#pragma once

#include <csignal>
#include <span>

namespace quillstead::OS {

/// Blocks or unblocks signals for its lifetime, then restores the thread's mask.
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

/// Unblocks signals permanently.
void unblock(std::span<const int> signals);

}  // namespace quillstead::OS
