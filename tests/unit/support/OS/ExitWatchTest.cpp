#include "support/OS/ExitWatch.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace quillstead::OS {
namespace {

bool isReadable(int descriptor, int milliseconds) {
  pollfd entry{.fd = descriptor, .events = POLLIN, .revents = 0};
  int count = 0;
  do {
    count = poll(&entry, 1, milliseconds);
  } while (count < 0 && errno == EINTR);
  return count == 1;
}

pid_t startChildThatEnds() {
  const pid_t process = fork();
  if (process == 0) _exit(0);
  return process;
}

void reap(pid_t process) {
  while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
}

TEST(ExitWatch, BecomesReadableWhenAChildHasEnded) {
  const ExitWatch watch(*makePipe());
  EXPECT_FALSE(isReadable(watch.descriptor(), 0));
  const pid_t process = startChildThatEnds();
  EXPECT_TRUE(isReadable(watch.descriptor(), 30'000));
  reap(process);
}

TEST(ExitWatch, WaitsForTheNextEndOnceTheLastWasAcknowledged) {
  const ExitWatch watch(*makePipe());
  for (int round = 0; round < 3; ++round) {
    const pid_t process = startChildThatEnds();
    EXPECT_TRUE(isReadable(watch.descriptor(), 30'000));
    reap(process);
    watch.acknowledge();
    EXPECT_FALSE(isReadable(watch.descriptor(), 20));
  }
}

TEST(ExitWatch, WorksWithSIGCHLDIgnoredAndBlocked) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    std::signal(SIGCHLD, SIG_IGN);
    sigset_t set{};
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    {
      const ExitWatch watch(*makePipe());
      const pid_t process = startChildThatEnds();
      unit::print(isReadable(watch.descriptor(), 30'000) ? "ended," : "not seen,");
      unit::print(waitpid(process, nullptr, 0) == process ? "reaped," : "not there,");
    }
    sigset_t mask{};
    sigprocmask(SIG_BLOCK, nullptr, &mask);
    struct sigaction action {};
    sigaction(SIGCHLD, nullptr, &action);
    unit::print(sigismember(&mask, SIGCHLD) == 1 ? "blocked again," : "unblocked,");
    unit::print(action.sa_handler == SIG_IGN ? "ignored again" : "not ignored");
  });
  EXPECT_EQ(run.standardOutput, "ended,reaped,blocked again,ignored again");
}

TEST(ExitWatch, LeavesNothingBehind) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    struct sigaction before {};
    before.sa_handler = [](int) {};
    before.sa_flags = SA_RESTART;
    sigaddset(&before.sa_mask, SIGUSR1);
    sigaction(SIGCHLD, &before, nullptr);
    const auto descriptors = unit::openDescriptors();
    { const ExitWatch watch(*makePipe()); }
    struct sigaction after {};
    sigaction(SIGCHLD, nullptr, &after);
    constexpr int flags = SA_RESTART | SA_ONSTACK | SA_NOCLDSTOP | SA_NODEFER | SA_SIGINFO;
    unit::print(after.sa_handler == before.sa_handler ? "handler," : "-,");
    unit::print((after.sa_flags & flags) == SA_RESTART ? "flags," : "-,");
    unit::print(sigismember(&after.sa_mask, SIGUSR1) == 1 ? "mask," : "-,");
    unit::print(unit::openDescriptors() == descriptors ? "descriptors" : "-");
  });
  EXPECT_EQ(run.standardOutput, "handler,flags,mask,descriptors");
}

TEST(ExitWatch, SurvivesMoreEndsThanItsPipeHolds) {
  const ExitWatch watch(*makePipe());
  for (int i = 0; i < 70'000; ++i) std::raise(SIGCHLD);
  EXPECT_TRUE(isReadable(watch.descriptor(), 0));
  watch.acknowledge();
  EXPECT_FALSE(isReadable(watch.descriptor(), 0));
}

TEST(ExitWatch, LeavesTheErrorNumberOfInterruptedCodeAlone) {
  const ExitWatch watch(*makePipe());
  for (int i = 0; i < 70'000; ++i) {
    errno = ENOTTY;
    std::raise(SIGCHLD);
    ASSERT_EQ(errno, ENOTTY);
  }
}

}  // namespace
}  // namespace quillstead::OS
