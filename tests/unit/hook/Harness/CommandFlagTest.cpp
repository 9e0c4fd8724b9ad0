#include "hook/Harness/CommandFlag.h"
#include "unit/helpers/CommandLine.h"

#include <gtest/gtest.h>

namespace quillstead::hook::CommandFlag {
namespace {

std::optional<std::string_view> valueIn(std::vector<std::string> arguments) {
  static std::vector<std::unique_ptr<unit::CommandLine>> kept;  // what the results point into
  kept.push_back(std::make_unique<unit::CommandLine>(std::move(arguments)));
  return value("--slot", kept.back()->arguments());
}

TEST(CommandFlag, TakesTheNextArgumentOrWhatFollowsTheEqualsSign) {
  EXPECT_EQ(valueIn({"--slot", "index"}), "index");
  EXPECT_EQ(valueIn({"--slot=index"}), "index");
  EXPECT_EQ(valueIn({"--slot=a=b"}), "a=b");
  EXPECT_EQ(valueIn({"--slot==", "x"}), "=");
}

TEST(CommandFlag, TakesTheNextArgumentWhateverItIs) {
  EXPECT_EQ(valueIn({"--slot", "--harness"}), "--harness");
  EXPECT_EQ(valueIn({"--slot", "--slot"}), "--slot");
  EXPECT_EQ(valueIn({"--slot", "--slot=x"}), "--slot=x");
  EXPECT_EQ(valueIn({"--slot", " "}), " ");
}

TEST(CommandFlag, IsAbsentWhenTheValueIsMissingOrEmpty) {
  EXPECT_EQ(valueIn({}), std::nullopt);
  EXPECT_EQ(valueIn({"--slot"}), std::nullopt);
  EXPECT_EQ(valueIn({"--slot", ""}), std::nullopt);
  EXPECT_EQ(valueIn({"--slot="}), std::nullopt);
}

TEST(CommandFlag, LetsTheFirstMatchDecide) {
  EXPECT_EQ(valueIn({"--slot", "a", "--slot", "b"}), "a");
  EXPECT_EQ(valueIn({"--slot=a", "--slot=b"}), "a");
  EXPECT_EQ(valueIn({"--slot=", "--slot", "b"}), std::nullopt);
  EXPECT_EQ(valueIn({"--slot", "", "--slot=b"}), std::nullopt);
}

TEST(CommandFlag, PassesOverEverythingElse) {
  EXPECT_EQ(valueIn({"--slotx", "a", "--slots=b", "-slot", "c", "slot=d", "--SLOT=e", "", "--slo"}),
            std::nullopt);
  EXPECT_EQ(valueIn({"positional", "--other", "--slotx=1", "--slot=last"}), "last");
  EXPECT_EQ(valueIn({"--other", "--slot", "found"}), "found");
}

}  // namespace
}  // namespace quillstead::hook::CommandFlag
