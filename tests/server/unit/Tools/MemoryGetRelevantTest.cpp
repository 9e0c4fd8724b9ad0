#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillstead::server::test {

namespace {

TEST(MemoryGetRelevant, GivesCardsWithTheirSizes) {
  const MemoryStage stage;
  stage.writeProjectCard("a.md", "# Ölkanne\n\nheron");
  stage.writePersonalCard("b.md", "# B\n\nheron");
  const Answer answer =
      stage.call("memory_get_relevant",
                 R"({"prompt":"heron","session_id":"s","transcript_path":"/t","unknown":{"a":1}})");
  EXPECT_EQ(answer.metaText("quillstead/replyKind"), "cards");
  EXPECT_EQ(answer.metaNumber("quillstead/cardCount"), 2);
  EXPECT_THAT(answer.metaNumbers("quillstead/cardSpans"), ::testing::ElementsAre(33, 27));
  EXPECT_THAT(answer.text, ::testing::EndsWith("\n\n## Ölkanne\n(project: a.md)\nheron\n\n"
                                               "## B\n(personal: b.md)\nheron\n"
                                               "</quillstead-memory>"));
}

TEST(MemoryGetRelevant, IsEmptyWhenNothingMatches) {
  const MemoryStage stage;
  stage.writeProjectCard("a.md", "# A\n\nheron");
  for (const char* const arguments :
       {R"({"prompt":"stork"})", R"({"prompt":""})", R"({"prompt":"the and of"})"}) {
    const Answer answer = stage.call("memory_get_relevant", arguments);
    EXPECT_EQ(answer.metaText("quillstead/replyKind"), "empty") << arguments;
    EXPECT_EQ(answer.meta.find("quillstead/cardCount"), nullptr);
    EXPECT_FALSE(answer.isError);
  }
}

TEST(MemoryGetRelevant, TakesZeroCharactersInAPromptForBlanks) {
  const MemoryStage stage;
  stage.writeProjectCard("a.md", "# A\n\nheron");
  for (const char* const prompt : {R"("\u0000heron")", R"("heron\u0000")", R"("a\u0000heron")"}) {
    const Answer answer =
        stage.call("memory_get_relevant", std::string(R"({"prompt":)") + prompt + "}");
    EXPECT_EQ(answer.metaNumber("quillstead/cardCount"), 1) << prompt;
  }
}

TEST(MemoryGetRelevant, NeedsAPrompt) {
  const MemoryStage stage;
  for (const char* const arguments : {"{}", R"({"prompt":5})", R"({"prompt":null})"}) {
    EXPECT_TRUE(stage.call("memory_get_relevant", arguments).isError) << arguments;
  }
}

}  // namespace

}  // namespace quillstead::server::test
