#include "hook/Budget.h"

#include <gtest/gtest.h>

#include <thread>

namespace quillstead::hook {
namespace {

using namespace std::chrono_literals;
using Clock = OS::MonotonicClock;

TEST(Deadline, LeavesWhatIsNotSpentOfTheAllowance) {
  const Deadline deadline{.start = Clock::now() - 1000s, .allowance = Seconds(2000)};
  EXPECT_LE(deadline.leash(), Seconds(1000));
  EXPECT_GT(deadline.leash(), Seconds(900));
}

TEST(Deadline, LeavesExactlyNothingWhenItIsSpent) {
  EXPECT_EQ((Deadline{.start = Clock::now() - 3s, .allowance = Seconds(2.5)}).leash(), Seconds(0));
  EXPECT_EQ((Deadline{.start = Clock::now(), .allowance = Seconds(0)}).leash(), Seconds(0));
  EXPECT_EQ((Deadline{.start = Clock::now(), .allowance = Seconds(-1)}).leash(), Seconds(0));
}

TEST(Deadline, ShrinksAsTimeGoesBy) {
  const Deadline deadline{.start = Clock::now(), .allowance = Seconds(100)};
  const Seconds before = deadline.leash();
  std::this_thread::sleep_for(20ms);
  EXPECT_LE(deadline.leash(), before - Seconds(0.02));
}

TEST(Deadline, TellsTheWholeMillisecondsSinceItsStart) {
  const auto start = Clock::now() - 7'654'900us;
  const Deadline deadline{.start = start, .allowance = Seconds(0)};
  const std::int64_t elapsed = deadline.elapsedMilliseconds();
  EXPECT_GE(elapsed, 7'654);
  EXPECT_LT(elapsed, 60'000);
  const auto after = std::chrono::floor<std::chrono::milliseconds>(Clock::now() - start);
  EXPECT_LE(elapsed, after.count()) << "cut, not rounded up";
}

}  // namespace
}  // namespace quillstead::hook
