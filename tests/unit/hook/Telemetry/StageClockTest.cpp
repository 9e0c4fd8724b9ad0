#include "hook/Telemetry/StageClock.h"

#include <gtest/gtest.h>

namespace quillstead::hook {
namespace {

using namespace std::chrono_literals;

TEST(StageClock, HasNoSegmentWithoutStages) {
  EXPECT_EQ(StageClock().segment(100), std::nullopt);
  EXPECT_EQ(StageClock().segment(0), std::nullopt);
}

TEST(StageClock, NamesEachStageWithItsMillisecondsAndTheResidual) {
  EXPECT_EQ(StageClock({{"rules", 12}, {"cards", 30}}).segment(47), "rules 12 cards 30 residual 5");
  EXPECT_EQ(StageClock({{"parse", 0}}).segment(0), "parse 0 residual 0");
}

TEST(StageClock, PrintsANegativeResidualWithItsSign) {
  EXPECT_EQ(StageClock({{"rules", 12}, {"cards", 38}}).segment(47),
            "rules 12 cards 38 residual -3");
}

TEST(StageClock, KeepsTheOrderInWhichStagesEnded) {
  StageClock clock;
  const auto now = OS::MonotonicClock::now();
  for (const char* name : {"write", "parse", "write"}) clock.record(name, now + 1h);
  EXPECT_EQ(clock.segment(0).value().find("write -"), 0U);
  EXPECT_NE(clock.segment(0).value().find(" parse -"), std::string::npos);
}

TEST(StageClock, RecordsWholeMillisecondsSinceTheStart) {
  StageClock clock;
  const auto start = OS::MonotonicClock::now() - 5'000'900us;
  clock.record("rules", start);
  const auto after = OS::MonotonicClock::now() - start;
  const std::string segment = clock.segment(0).value();
  const std::int64_t recorded = std::stoll(segment.substr(6));
  EXPECT_GE(recorded, 5'000);
  EXPECT_LE(recorded, std::chrono::floor<std::chrono::milliseconds>(after).count());
}

}  // namespace
}  // namespace quillstead::hook
