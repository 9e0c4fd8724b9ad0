#include "support/OS/MonotonicClock.h"

#include <gtest/gtest.h>

#include <thread>

namespace quillstead::OS {
namespace {

TEST(MonotonicClock, NeverGoesBack) {
  auto last = MonotonicClock::now();
  for (int i = 0; i < 100'000; ++i) {
    const auto now = MonotonicClock::now();
    ASSERT_GE(now, last);
    last = now;
  }
}

TEST(MonotonicClock, CountsNanosecondsOfRealTime) {
  const auto start = MonotonicClock::now();
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  const auto elapsed = MonotonicClock::now() - start;
  EXPECT_GE(elapsed, std::chrono::milliseconds(30));
  EXPECT_LT(elapsed, std::chrono::seconds(30));
}

}  // namespace
}  // namespace quillstead::OS
