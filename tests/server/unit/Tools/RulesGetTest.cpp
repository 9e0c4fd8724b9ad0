#include "hook/BlockSplit.h"
#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace quillstead::server::test {

namespace {

using ::testing::HasSubstr;

TEST(RulesGet, GivesPersonalThenProjectRulesThenTheIndex) {
  const MemoryStage stage;
  stage.write("home/.quillstead/rules.md", "\n- Personal – größer.\r\n\r\n");
  stage.write("project/.quillstead/rules.md", "- Project.\n");
  stage.writeProjectCard("a.md", "# Título 日本\n");
  const Answer answer = stage.call("rules_get");
  EXPECT_EQ(answer.metaText("quillstead/replyKind"), "rules");
  EXPECT_EQ(answer.meta.find("quillstead/rulesLane"), nullptr);
  const auto span = answer.metaNumber("quillstead/indexSpan");
  ASSERT_TRUE(span);
  const auto halves = hook::BlockSplit::split(answer.text, *span);
  ASSERT_TRUE(halves);
  EXPECT_EQ(halves->head,
            "<user-rules>\n- Personal – größer.\n\nFrom here on, these are not the user's own "
            "rules but those in this project's files:\n\n- Project.\n</user-rules>");
  EXPECT_EQ(halves->index,
            "<user-rules>\nMemory holds 1 card (`grab` reads one by its title):\n- Título 日本\n"
            "</user-rules>");
}

TEST(RulesGet, IsEmptyWhenThereIsNothing) {
  const MemoryStage stage;
  for (const char* const arguments : {"{}", R"({"card":true,"card_ceiling":5000})"}) {
    const Answer answer = stage.call("rules_get", arguments);
    EXPECT_EQ(answer.metaText("quillstead/replyKind"), "empty");
    EXPECT_EQ(answer.meta.find("quillstead/indexSpan"), nullptr);
    EXPECT_FALSE(answer.text.empty());
  }
}

TEST(RulesGet, GivesACardWithinItsCeilings) {
  const MemoryStage stage;
  std::string rules;
  for (int number = 0; number < 400; ++number) rules += "- Regel für größere Dinge\n";
  stage.write("home/.quillstead/rules.md", rules);
  for (int number = 0; number < 50; ++number) {
    stage.writeProjectCard(std::to_string(number) + ".md", "# Card " + std::to_string(number));
  }
  const Answer both =
      stage.call("rules_get", R"({"card":true,"card_ceiling":5000,"card_head_ceiling":2000})");
  EXPECT_EQ(both.metaText("quillstead/rulesLane"), "card");
  EXPECT_EQ(both.metaText("quillstead/card"), "cut");
  EXPECT_LE(both.text.size(), 5'000U);
  const auto halves =
      hook::BlockSplit::split(both.text, both.metaNumber("quillstead/indexSpan").value_or(0));
  ASSERT_TRUE(halves);
  EXPECT_LE(halves->head.size(), 2'000U);
  EXPECT_GT(halves->head.size(), 1'800U);
  EXPECT_THAT(halves->index, HasSubstr("- Card 0\n"));

  const Answer whole = stage.call("rules_get", R"({"card":false,"card_ceiling":100})");
  EXPECT_EQ(whole.metaText("quillstead/rulesLane"), "");
  EXPECT_GT(whole.text.size(), rules.size());
}

TEST(RulesGet, PointsToRulesThatCannotBeCut) {
  const MemoryStage stage;
  stage.write("home/.quillstead/rules.md", std::string(9'000, 'x'));
  const Answer answer = stage.call("rules_get", R"({"card":true,"card_ceiling":5000})");
  EXPECT_EQ(answer.metaText("quillstead/replyKind"), "rules");
  EXPECT_EQ(answer.metaText("quillstead/rulesLane"), "card");
  EXPECT_EQ(answer.metaText("quillstead/card"), "pointer");
}

TEST(RulesGet, DefusesFencesInRules) {
  const MemoryStage stage;
  stage.write("home/.quillstead/rules.md", "- a </user-rules> b\n");
  EXPECT_EQ(stage.call("rules_get").text, "<user-rules>\n- a &lt;/user-rules> b\n</user-rules>");
}

TEST(RulesGet, SaysWhichRulesItCannotUse) {
  const MemoryStage stage;
  stage.write("secret", "secret");
  stage.write("project/.quillstead/rules.md", std::string("a\0b", 3));
  stage.write("home/.quillstead/empty", "");
  std::filesystem::create_symlink(stage.path("secret"), stage.path("home/.quillstead/rules.md"));
  const Answer answer = stage.call("rules_get");
  EXPECT_THAT(answer.text, HasSubstr("home/.quillstead/rules.md were left out: it is a symbolic"));
  EXPECT_THAT(answer.text, HasSubstr("project/.quillstead/rules.md were left out: it is not text"));
}

TEST(RulesGet, RefusesArgumentsOfAWrongKind) {
  const MemoryStage stage;
  for (const char* const arguments :
       {R"({"card":1})", R"({"card":"true"})", R"({"card":true,"card_ceiling":0})",
        R"({"card_ceiling":2.0})", R"({"card_ceiling":true})", R"({"card_head_ceiling":"5"})",
        R"({"cwd":5})", R"({"cwd":"a\u0000b"})"}) {
    const Answer answer = stage.call("rules_get", arguments);
    EXPECT_TRUE(answer.isError) << arguments;
    EXPECT_THAT(answer.text, ::testing::StartsWith("Wrong arguments: ")) << arguments;
  }
  EXPECT_EQ(
      stage.call("rules_get", R"({"card":null,"card_ceiling":null,"session_id":5})").errorCode,
      std::nullopt);
}

}  // namespace

}  // namespace quillstead::server::test
