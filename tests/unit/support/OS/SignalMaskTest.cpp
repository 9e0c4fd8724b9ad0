#include "support/OS/SignalMask.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>

#include <array>

namespace quillstead::OS {
namespace {

constexpr std::array watched{SIGUSR1, SIGUSR2};

bool isBlocked(int signal) {
  sigset_t mask{};
  sigprocmask(SIG_BLOCK, nullptr, &mask);
  return sigismember(&mask, signal) == 1;
}

void block(int signal) {
  sigset_t set{};
  sigemptyset(&set);
  sigaddset(&set, signal);
  sigprocmask(SIG_BLOCK, &set, nullptr);
}

TEST(SignalMask, BlocksForItsLifetimeOnly) {
  {
    const SignalMask blocked(SignalMask::Change::block, watched);
    EXPECT_TRUE(isBlocked(SIGUSR1));
    EXPECT_TRUE(isBlocked(SIGUSR2));
    EXPECT_FALSE(isBlocked(SIGTERM));
  }
  EXPECT_FALSE(isBlocked(SIGUSR1));
  EXPECT_FALSE(isBlocked(SIGUSR2));
}

TEST(SignalMask, PutsTheMaskBackAsItWas) {
  const SignalMask usr1AndTerm(SignalMask::Change::block, std::array{SIGUSR1, SIGTERM});
  {
    const SignalMask unblocked(SignalMask::Change::unblock, watched);
    EXPECT_FALSE(isBlocked(SIGUSR1));
    EXPECT_FALSE(isBlocked(SIGUSR2));
    EXPECT_TRUE(isBlocked(SIGTERM));
  }
  EXPECT_TRUE(isBlocked(SIGUSR1));
  EXPECT_FALSE(isBlocked(SIGUSR2));
  { const SignalMask again(SignalMask::Change::block, watched); }
  EXPECT_TRUE(isBlocked(SIGUSR1));
  EXPECT_FALSE(isBlocked(SIGUSR2));
}

TEST(SignalMask, UnblocksForGood) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    for (const int signal : {SIGUSR1, SIGUSR2, SIGTERM}) block(signal);
    unblock(watched);
    for (const int signal : {SIGUSR1, SIGUSR2, SIGTERM}) unit::print(isBlocked(signal) ? "b" : "-");
  });
  EXPECT_EQ(run.standardOutput, "--b");
}

}  // namespace
}  // namespace quillstead::OS
