#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace quillstead::servertest {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A store large enough for words to be rare in it.
class Ranking : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int number = 0; number < 20; ++number) {
      const std::string name = "filler" + std::to_string(number);
      stage.writeProjectCard(name + ".md", "# " + name + "\n\nSome unrelated words about gardens.");
    }
  }

  MemoryStage stage;
};

TEST_F(Ranking, PutsTitleBeforeTagsBeforeBody) {
  stage.writeProjectCard("c.md", "# Gamma\n\nwords about kubernetes and such");
  stage.writeProjectCard("b.md", "---\ntags: [kubernetes]\n---\n# Beta\n\nwords about it and such");
  stage.writeProjectCard("a.md", "# Kubernetes\n\nwords about it and of such");
  EXPECT_THAT(stage.recalled("kubernetes"), ElementsAre("Kubernetes", "Beta", "Gamma"));
}

TEST_F(Ranking, PutsProjectBeforePersonalWhenEqual) {
  stage.writePersonalCard("a.md", "# Zebra one\n\nsame");
  stage.writeProjectCard("b.md", "# Zebra two\n\nsame");
  stage.writePersonalCard("c.md", "# Zebra three\n\nsame");
  stage.writeProjectCard("0.md", "# Zebra four\n\nsame");
  EXPECT_THAT(stage.recalled("zebra"),
              ElementsAre("Zebra four", "Zebra two", "Zebra one", "Zebra three"));
}

TEST_F(Ranking, DoesNotDependOnTheHistoryOfTheIndex) {
  for (const char* const name : {"d", "b", "a", "c"}) {
    stage.writeProjectCard(std::string(name) + ".md", "# Quokka " + std::string(name) + "\n\nx");
    EXPECT_FALSE(stage.recalled("quokka").empty());
  }
  stage.writeProjectCard("b.md", "# Quokka b\n\nchanged and back");
  EXPECT_EQ(stage.recalled("quokka").size(), 4U);
  stage.writeProjectCard("b.md", "# Quokka b\n\nx");
  EXPECT_THAT(stage.recalled("quokka"),
              ElementsAre("Quokka a", "Quokka b", "Quokka c", "Quokka d"));
}

TEST_F(Ranking, LeavesOutCardsFarBehindTheBest) {
  stage.writeProjectCard("best.md", "# Rotating the tokens of staging\n\nrotate tokens staging");
  std::string body = "staging";
  for (int count = 0; count < 500; ++count) body += " padding" + std::to_string(count);
  stage.writeProjectCard("far.md", "# Other\n\n" + body);
  EXPECT_THAT(stage.recalled("rotate the tokens of staging"),
              ElementsAre("Rotating the tokens of staging"));
}

TEST_F(Ranking, GivesAtMostEightCards) {
  for (int number = 0; number < 30; ++number) {
    stage.writePersonalCard("n" + std::to_string(number) + ".md", "# Note\n\nwombat");
  }
  EXPECT_EQ(stage.recalled("wombat").size(), 8U);
}

TEST_F(Ranking, FindsNothingForStopWordsBlanksAndSigns) {
  stage.writeProjectCard("the.md", "# The and of\n\nwhat how please can you do it");
  for (const char* const prompt :
       {"", "   ", "what can you do for me, please?", "the and of", "?!*\"()^", "a b c", "\n\n"}) {
    EXPECT_THAT(stage.recalled(prompt), IsEmpty()) << prompt;
  }
}

TEST_F(Ranking, TakesSearchSyntaxInPromptsForWords) {
  stage.writeProjectCard("a.md", "# Platypus\n\nx");
  for (const char* const prompt :
       {"\"platypus", "platypus*", "title:platypus", "NOT platypus", "(platypus", "platypus ^ -x",
        "NEAR(platypus", "platypus\"\"\"", "{title}: platypus", "platypus;DROP TABLE cards"}) {
    EXPECT_THAT(stage.recalled(prompt), ElementsAre("Platypus")) << prompt;
  }
}

TEST_F(Ranking, FindsWordsInOtherFormsAndScripts) {
  stage.writeProjectCard("a.md",
                         "# Released builds\n\nof the naïve Ölfilter 数据库备份 every night");
  for (const char* const prompt : {"releasing", "build", "NAIVE", "ölfilter", "数据库怎么办"}) {
    EXPECT_THAT(stage.recalled(prompt), ElementsAre("Released builds")) << prompt;
  }
  EXPECT_THAT(stage.recalled("据数"), IsEmpty());
}

TEST_F(Ranking, WorksInAStoreOfOneCard) {
  const MemoryStage lonely;
  lonely.writePersonalCard("only.md", "# Only\n\nabout ferrets");
  EXPECT_THAT(lonely.recalled("ferrets?"), ElementsAre("Only"));
}

TEST_F(Ranking, TakesAPromptOfAnySize) {
  stage.writeProjectCard("a.md", "# Platypus\n\nx");
  std::string prompt = "platypus";
  for (int count = 0; count < 50'000; ++count) prompt += " word" + std::to_string(count);
  EXPECT_THAT(stage.recalled(prompt), ElementsAre("Platypus"));
}

}  // namespace

}  // namespace quillstead::servertest
