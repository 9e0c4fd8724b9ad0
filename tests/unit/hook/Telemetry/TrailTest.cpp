#include "hook/Telemetry/Trail.h"

#include <gtest/gtest.h>

namespace quillstead::hook {
namespace {

Trail trailOf(std::vector<std::string> fields) {
  Trail trail;
  trail.append(std::move(fields));
  return trail;
}

std::string_view status(std::vector<std::string> fields, std::string_view key = "rules") {
  return Trail::laneStatus(fields, key);
}

TEST(Trail, JoinsItsFieldsWithSingleBlanks) {
  Trail trail;
  EXPECT_TRUE(trail.empty());
  EXPECT_EQ(trail.joined(), "");
  trail.append("a=1");
  trail.append(std::vector<std::string>{"b=2", "c=3"});
  EXPECT_FALSE(trail.empty());
  EXPECT_EQ(trail.joined(), "a=1 b=2 c=3");
}

TEST(Trail, ReplacesEveryFieldThatIsExactlySo) {
  Trail trail = trailOf({"shortcut=1", "shortcut=12", "shortcut=1", "shortcut=MISS:x"});
  trail.replace("shortcut=1", "shortcut=MISS:over-budget");
  EXPECT_EQ(trail.joined(),
            "shortcut=MISS:over-budget shortcut=12 shortcut=MISS:over-budget shortcut=MISS:x");
}

TEST(Trail, SumsALaneUpInOneWord) {
  EXPECT_EQ(status({"rules=MISS:timeout"}), "timeout");
  EXPECT_EQ(status({"rules=MISS:no-kind"}), "refused");
  EXPECT_EQ(status({"rules=MISS:"}), "refused");
  EXPECT_EQ(status({"rules=MISS:timeouts"}), "refused");
  EXPECT_EQ(status({"rules=MISS: timeout"}), "refused");
  EXPECT_EQ(status({"rules=1"}), "ok");
  EXPECT_EQ(status({"rules="}), "ok");
  EXPECT_EQ(status({"rules=MISS"}), "ok");
  EXPECT_EQ(status({"rules=miss:timeout"}), "ok");
  EXPECT_EQ(status({}), "ok");
}

TEST(Trail, GoesByTheFirstFieldOfTheKeyOnly) {
  EXPECT_EQ(status({"rules=1", "rules=MISS:timeout"}), "ok");
  EXPECT_EQ(status({"card=1", "rules=MISS:timeout", "rules=1"}), "timeout");
  EXPECT_EQ(status({"rules=MISS:x", "rules=MISS:timeout"}), "refused");
}

TEST(Trail, DoesNotTakeALongerKeyForTheKey) {
  EXPECT_EQ(status({"rulesX=MISS:timeout"}), "ok");
  EXPECT_EQ(status({"Xrules=MISS:timeout"}), "ok");
  EXPECT_EQ(status({"rulesX=MISS:timeout", "rules=MISS:no-kind"}), "refused");
  EXPECT_EQ(status({"cards=MISS:timeout", "rules=1"}), "ok");
  EXPECT_EQ(status({"cards=MISS:timeout", "rules=1"}, "cards"), "timeout");
}

}  // namespace
}  // namespace quillstead::hook
