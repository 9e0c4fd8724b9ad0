#include "hook/BlockSplit.h"

#include <gtest/gtest.h>

namespace quillstead::hook::BlockSplit {
namespace {

const std::string block = "<user-rules>\nA\nIDX\n</user-rules>";

std::string fenced(const std::string& text) { return "<user-rules>\n" + text + "\n</user-rules>"; }

TEST(BlockSplit, FencesWithThirteenAndFourteenBytes) {
  EXPECT_EQ(opening, "<user-rules>\n");
  EXPECT_EQ(opening.size(), 13U);
  EXPECT_EQ(closing, "\n</user-rules>");
  EXPECT_EQ(closing.size(), 14U);
}

TEST(BlockSplit, SplitsTheIndexOffAndFencesBothHalves) {
  const std::optional<Halves> halves = split(block, 3);
  ASSERT_TRUE(halves);
  EXPECT_EQ(halves->head, fenced("A"));
  EXPECT_EQ(halves->index, fenced("IDX"));
}

TEST(BlockSplit, RefusesACutThatDoesNotFollowALineFeed) {
  EXPECT_EQ(split(block, 4), std::nullopt) << "the byte before the cut is the letter A";
  EXPECT_EQ(split(block, 2), std::nullopt) << "the byte before the cut is the letter I";
  EXPECT_EQ(split(block, 1), std::nullopt);
}

TEST(BlockSplit, RefusesACutInOrAtTheEndOfTheOpeningFence) {
  EXPECT_EQ(split(block, 5), std::nullopt) << "the cut is where the fence ends";
  for (std::int64_t span = 6; span < 40; ++span)
    EXPECT_EQ(split(block, span), std::nullopt) << span;
  EXPECT_EQ(split(block, INT64_MAX), std::nullopt);
}

TEST(BlockSplit, RefusesASpanOfZeroOrLess) {
  EXPECT_EQ(split(block, 0), std::nullopt);
  EXPECT_EQ(split(block, -1), std::nullopt);
  EXPECT_EQ(split(block, INT64_MIN), std::nullopt);
}

TEST(BlockSplit, TakesRulesThatAreEmpty) {
  const std::optional<Halves> halves = split(fenced("\nIDX"), 3);
  ASSERT_TRUE(halves);
  EXPECT_EQ(halves->head, fenced(""));
  EXPECT_EQ(halves->index, fenced("IDX"));
}

TEST(BlockSplit, TakesAnIndexOfSeveralLines) {
  const std::optional<Halves> halves = split(fenced("rule 1\nrule 2\n\ni1\ni2"), 5);
  ASSERT_TRUE(halves);
  EXPECT_EQ(halves->head, fenced("rule 1\nrule 2\n"));
  EXPECT_EQ(halves->index, fenced("i1\ni2"));
}

TEST(BlockSplit, RefusesABlockThatIsNotFenced) {
  for (const std::string& unfenced :
       {std::string("A\nIDX"), std::string(""), "A\nIDX\n</user-rules>" + std::string(),
        std::string("<user-rules>\nA\nIDX"), block + " ", block + "\n", " " + block,
        std::string("<user-rules>A\nIDX\n</user-rules>"),
        std::string("<user-rules>\nA\nIDX</user-rules>"),
        std::string("<USER-RULES>\nA\nIDX\n</USER-RULES>")}) {
    for (std::int64_t span = 1; span < 8; ++span) {
      EXPECT_EQ(split(unfenced, span), std::nullopt) << unfenced << " at " << span;
    }
  }
}

TEST(BlockSplit, RefusesFencesThatShareTheirLineFeed) {
  for (std::int64_t span = -1; span < 30; ++span) {
    EXPECT_EQ(split("<user-rules>\n</user-rules>", span), std::nullopt) << span;
    EXPECT_EQ(split(fenced(""), span), std::nullopt) << span;
  }
}

TEST(BlockSplit, CountsBytesAndReplacesACharacterThatTheCutBreaks) {
  const std::optional<Halves> whole = split(fenced("\xC3\xA9\n\xE2\x82\xAC"), 3);
  ASSERT_TRUE(whole);
  EXPECT_EQ(whole->head, fenced("\xC3\xA9"));
  EXPECT_EQ(whole->index, fenced("\xE2\x82\xAC"));

  const std::optional<Halves> broken = split(fenced("a\xC3\n\xA9z"), 2);
  ASSERT_TRUE(broken);
  EXPECT_EQ(broken->head, fenced("a\xEF\xBF\xBD"));
  EXPECT_EQ(broken->index, fenced("\xEF\xBF\xBDz"));
}

}  // namespace
}  // namespace quillstead::hook::BlockSplit
