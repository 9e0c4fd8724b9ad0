#include "hook/MCP/ReplyTruth.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

namespace quillstead::hook::ReplyTruth {
namespace {

TEST(ReplyTruth, IsFalseForAMissingValue) { EXPECT_FALSE(isTruthy(JSON::View())); }

TEST(ReplyTruth, JudgesEveryKindOfValue) {
  struct Row {
    const char* value;
    bool truth;
  };
  for (const Row& row : {Row{"null", false},
                         Row{"false", false},
                         Row{"true", true},
                         Row{"0", false},
                         Row{"0.0", false},
                         Row{"-0", false},
                         Row{"-0.0", false},
                         Row{"0e5", false},
                         Row{"1", true},
                         Row{"-1", true},
                         Row{"2", true},
                         Row{"0.5", true},
                         Row{"1e-300", true},
                         Row{"1e400", true},
                         Row{R"("")", false},
                         Row{R"("0")", true},
                         Row{R"("false")", true},
                         Row{R"("true")", true},
                         Row{R"(" ")", true},
                         Row{R"("\u0000")", true},
                         Row{"[]", false},
                         Row{"[0]", true},
                         Row{"[null]", true},
                         Row{"[[]]", true},
                         Row{"{}", false},
                         Row{R"({"a":null})", true},
                         Row{R"({"":false})", true}}) {
    const auto list = unit::documentIn(std::string("[") + row.value + "]");
    EXPECT_EQ(isTruthy(list.root().array()->front()), row.truth) << row.value;
  }
}

}  // namespace
}  // namespace quillstead::hook::ReplyTruth
