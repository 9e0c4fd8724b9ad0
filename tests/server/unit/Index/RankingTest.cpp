#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace quillstead::server::test {

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
  for (const char* const prompt :
       {"releasing", "release build", "NAIVE", "ölfilter", "数据库怎么办"}) {
    EXPECT_THAT(stage.recalled(prompt), ElementsAre("Released builds")) << prompt;
  }
  EXPECT_THAT(stage.recalled("据数"), IsEmpty());
}

TEST_F(Ranking, TakesAWordThatNoCardHasForOneThatBeginsSo) {
  stage.writeProjectCard("a.md", "# Authentication of operators\n\nby certificate alone");
  for (const char* const prompt :
       {"auth certific", "certificates operatorship", "authentification certificate"}) {
    EXPECT_THAT(stage.recalled(prompt), ElementsAre("Authentication of operators")) << prompt;
  }
  // One guess alone is too little, and the same guess twice is one.
  for (const char* const prompt : {"auth", "authx authy", "au ce", "cert1 auth2"}) {
    EXPECT_THAT(stage.recalled(prompt), IsEmpty()) << prompt;
  }
}

TEST_F(Ranking, WantsOneWordThatSaysSomethingOrTwoThatSayLittle) {
  stage.writeProjectCard("a.md", "# Lint\n\nfix the file, then oxlint");
  for (const char* const prompt : {"fix", "open the file", "run the tests", "oxen and ox"}) {
    EXPECT_THAT(stage.recalled(prompt), IsEmpty()) << prompt;
  }
  for (const char* const prompt : {"oxlint", "fix the file", "fix oxlint"}) {
    EXPECT_THAT(stage.recalled(prompt), ElementsAre("Lint")) << prompt;
  }
}

TEST_F(Ranking, PutsWordsThatFollowEachOtherFirst) {
  stage.writeProjectCard("a.md", "# Gamma\n\nwalrus of which there is no other and ibex, heron");
  stage.writeProjectCard("b.md",
                         "# Delta\n\nof which there is a walrus ibex here, other than heron");
  EXPECT_THAT(stage.recalled("walrus ibex"), ElementsAre("Delta", "Gamma"));
}

TEST_F(Ranking, PutsACardWithMoreOfThePromptFirst) {
  // A title weighs more than three words of a body that is rather long, but has less of the prompt.
  stage.writeProjectCard("a.md", "# Walrus\n\nthey are large animals");
  stage.writeProjectCard(
      "b.md",
      "# Delta\n\nstork, then other birds, ibex, then some small rodents, heron, "
      "then nothing much until evening came");
  EXPECT_THAT(stage.recalled("walrus or heron or ibex or stork"), ElementsAre("Delta", "Walrus"));
}

TEST_F(Ranking, FindsNamesByTheirParts) {
  stage.writeProjectCard("a.md", "# Retries\n\n`fetchWithRetry` gives up");
  for (const char* const prompt : {"fetchWithRetry", "fetch_with_retry", "fetch-with-retry",
                                   "FetchWithRetry()", "why does fetch not retry"}) {
    EXPECT_THAT(stage.recalled(prompt), ElementsAre("Retries")) << prompt;
  }
}

TEST_F(Ranking, FindsWordsWithinRunsOfScriptsWithoutSpaces) {
  stage.writeProjectCard("th.md", "# T\n\nรายงานประจำเดือนจะถูกส่งไปยังฝ่ายบัญชี");
  stage.writeProjectCard("ko.md", "# K\n\n데이터베이스를 백업합니다");
  stage.writeProjectCard("hi.md", "# H\n\nडेटाबेस का बैकअप");
  stage.writeProjectCard("km.md", "# C\n\nរបាយការណ៍ប្រចាំខែត្រូវបានផ្ញើ");
  EXPECT_THAT(stage.recalled("ฝ่ายบัญชี"), ElementsAre("T"));
  EXPECT_THAT(stage.recalled("베이스 백업은"), ElementsAre("K"));
  EXPECT_THAT(stage.recalled("बैकअप"), ElementsAre("H"));
  EXPECT_THAT(stage.recalled("ប្រចាំខែ"), ElementsAre("C"));
}

TEST_F(Ranking, FindsKoreanWordsOfOneSyllableWithAnyParticle) {
  stage.writeProjectCard("ko.md", "# K\n\n짐이 무거운 방의 문제");
  EXPECT_THAT(stage.recalled("짐만 방은"), ElementsAre("K"));
  EXPECT_THAT(stage.recalled("짐만"), IsEmpty());
}

TEST_F(Ranking, LeavesOutCardsWithHalfOfAThaiPrompt) {
  const std::string prompt = "รายงานประจำเดือนจะถูกส่งไปยังฝ่ายบัญชี";
  stage.writeProjectCard("all.md", "# T\n\n" + prompt);
  stage.writeProjectCard("half.md", "# U\n\nรายงานประจำเดือนจะถูก");
  stage.writeProjectCard("most.md", "# V\n\nรายงานประจำเดือนจะถูกส่งไปยัง");
  EXPECT_THAT(stage.recalled(prompt), ElementsAre("T", "V"));
}

TEST_F(Ranking, TakesNoCardForAFewPairsOfAPrompt) {
  stage.writeProjectCard("a.md", "# A\n\n데이터베");
  stage.writeProjectCard("b.md", "# B\n\n백업정책");
  stage.writeProjectCard("c.md", "# C\n\n변경안내");
  stage.writeProjectCard("k.md", "# 이스터\n\n달걀");
  stage.writeProjectCard("th.md", "# T\n\nฝ่ a b ่า a b าย a b ยบ a b บั a b ัญ a b ญช a b ชี");
  EXPECT_THAT(stage.recalled("데이터베이스백업정책변경안내문"), ElementsAre("A", "B", "C"));
  EXPECT_THAT(stage.recalled("이스터"), ElementsAre("이스터"));
  EXPECT_THAT(stage.recalled("ฝ่ายบัญชี"), IsEmpty());
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

}  // namespace quillstead::server::test
