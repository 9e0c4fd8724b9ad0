#include "hook/Lanes/LaneOutcome.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

namespace quillstead::hook::ReplyNumber {
namespace {

std::optional<std::int64_t> positiveIn(const std::string& value) {
  const auto list = unit::documentIn("[" + value + "]");
  return positive(list.root().array()->front());
}

TEST(ReplyNumber, IsAnIntegerOfAtLeastOne) {
  EXPECT_EQ(positiveIn("1"), 1);
  EXPECT_EQ(positiveIn("1000"), 1000);
  EXPECT_EQ(positiveIn("9223372036854775807"), INT64_MAX);
}

TEST(ReplyNumber, IsAbsentForEverythingElse) {
  for (const char* value : {"0", "-0", "-1", "3.0", "1.5", "1e0", "1E2", "10.0e0", "true", "false",
                            "null", R"("1")", "[1]", R"({"1":1})", "9223372036854775808",
                            "-9223372036854775808", "99999999999999999999999999"}) {
    EXPECT_EQ(positiveIn(value), std::nullopt) << value;
  }
  EXPECT_EQ(positive(JSON::View()), std::nullopt);
}

}  // namespace
}  // namespace quillstead::hook::ReplyNumber
