#include "support/OS/Descriptor.h"
#include "support/OS/MonotonicClock.h"
#include "support/OS/Poll.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace quillstead::OS {
namespace {

using namespace std::chrono_literals;

TEST(Poll, NeverEndsBeforeTheTimeIsOver) {
  for (const std::chrono::nanoseconds time :
       {1ns, 999ns, 1'000ns, 999'999ns, 1'000'001ns, 1'500'000ns, 20'000'001ns, 33'333'333ns}) {
    for (int round = 0; round < 5; ++round) {
      const auto start = MonotonicClock::now();
      waitForEvents({}, time);
      ASSERT_GE(MonotonicClock::now() - start, time);
    }
  }
}

TEST(Poll, WaitsForMoreThanASecondToo) {
  const auto start = MonotonicClock::now();
  waitForEvents({}, 1'000'500'000ns);
  EXPECT_GE(MonotonicClock::now() - start, 1'000'500'000ns);
}

TEST(Poll, FillsInWhichDescriptorsHaveAnEvent) {
  const std::optional<Pipe> idle = makePipe();
  const std::optional<Pipe> ready = makePipe();
  ASSERT_TRUE(idle && ready);
  writeAll(ready->writing.number(), "x");
  std::array<pollfd, 4> entries{
      pollfd{.fd = idle->reading.number(), .events = POLLIN, .revents = 0},
      pollfd{.fd = ready->reading.number(), .events = POLLIN, .revents = 0},
      pollfd{.fd = -1, .events = POLLIN, .revents = 0},
      pollfd{.fd = idle->writing.number(), .events = POLLOUT, .revents = 0}};
  waitForEvents(entries, std::nullopt);
  EXPECT_EQ(entries[0].revents, 0);
  EXPECT_EQ(entries[1].revents, POLLIN);
  EXPECT_EQ(entries[2].revents, 0);
  EXPECT_EQ(entries[3].revents, POLLOUT);
}

TEST(Poll, LeavesNoEventsWhenTheTimeIsOver) {
  const std::optional<Pipe> idle = makePipe();
  ASSERT_TRUE(idle);
  std::array<pollfd, 1> entries{
      pollfd{.fd = idle->reading.number(), .events = POLLIN, .revents = POLLIN}};
  waitForEvents(entries, 1ms);
  EXPECT_EQ(entries[0].revents, 0);
  entries[0].revents = POLLIN;
  waitForEvents(entries, 0ns);
  EXPECT_EQ(entries[0].revents, 0);
}

TEST(Poll, LetsEveryDescriptorBeLookedAtWhenTheSystemRefusesToWait) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    const rlimit fewerThanEntries{.rlim_cur = 2, .rlim_max = 2};
    setrlimit(RLIMIT_NOFILE, &fewerThanEntries);
    std::array<pollfd, 3> entries{pollfd{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
                                  pollfd{.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0},
                                  pollfd{.fd = -1, .events = POLLIN, .revents = POLLIN}};
    waitForEvents(entries, std::nullopt);
    const bool areAsked = entries[0].revents == POLLIN && entries[1].revents == POLLOUT;
    unit::print(areAsked && entries[2].revents == 0 ? "looked at" : "not looked at");
  });
  EXPECT_EQ(run.standardOutput, "looked at");
}

TEST(Poll, EndsWithoutEventsWhenASignalHandlerRan) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    const std::optional<Pipe> idle = makePipe();
    std::array<pollfd, 1> entries{
        pollfd{.fd = idle->reading.number(), .events = POLLIN, .revents = POLLIN}};
    alarm(1);
    waitForEvents(entries, std::nullopt);
    unit::print(entries[0].revents == 0 ? "no events" : "events");
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "no events");
}

}  // namespace
}  // namespace quillstead::OS
