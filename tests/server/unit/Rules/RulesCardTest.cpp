#include "hook/BlockSplit.h"
#include "server/Rules/RulesCard.h"
#include "support/Text/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace quillstead::server {

namespace {

std::string rules(int count) {
  std::string text = "# Regeln – für alle";
  for (int number = 1; number <= count; ++number) {
    text += "\n- Rule " + std::to_string(number) + ": größer ist nicht besser, 日本語";
  }
  return text;
}

Titles titles(std::size_t count) {
  Titles all{.newest = {}, .total = count};
  for (std::size_t number = 0; number < count; ++number) {
    all.newest.push_back("Título número " + std::to_string(number));
  }
  return all;
}

/// The size that the part before the index has in a fence of its own.
std::size_t headSize(const RulesBlock& block) {
  return block.text.size() - (block.indexSpan ? *block.indexSpan + 1 : 0);
}

/// The block in halves, cut by whoever reads it.
hook::BlockSplit::Halves halves(const RulesBlock& block) {
  auto split =
      hook::BlockSplit::split(block.text, static_cast<std::int64_t>(block.indexSpan.value_or(0)));
  EXPECT_TRUE(split.has_value());
  return split.value_or(hook::BlockSplit::Halves{});
}

TEST(RulesCard, IsWholeWithoutCeilings) {
  const RulesCard::Card card = RulesCard::made(rules(5), titles(3), {});
  EXPECT_EQ(card.kind, RulesCard::Kind::whole);
  EXPECT_EQ(halves(card.block).head, "<user-rules>\n" + rules(5) + "\n</user-rules>");
  EXPECT_THAT(halves(card.block).index,
              ::testing::StartsWith("<user-rules>\nMemory holds 3 cards"));
}

TEST(RulesCard, KeepsBothCeilingsWhateverTheyAre) {
  const std::string text = rules(30);
  for (std::size_t block = 1; block < text.size() + 1'500; block += 17) {
    for (const std::size_t head : {1U, 27U, 60U, 200U, 900U, 5'000U}) {
      for (const std::size_t cards : {0U, 1U, 40U}) {
        const RulesCard::Card card =
            RulesCard::made(text, titles(cards), {.block = block, .head = head});
        SCOPED_TRACE(std::to_string(block) + " " + std::to_string(head));
        ASSERT_LE(card.block.text.size(), block);
        ASSERT_EQ(Text::repaired(card.block.text), card.block.text);
        if (card.block.text.empty()) continue;
        ASSERT_LE(headSize(card.block), head);
        ASSERT_TRUE(card.block.text.starts_with("<user-rules>\n"));
        ASSERT_TRUE(card.block.text.ends_with("\n</user-rules>"));
        if (card.block.indexSpan) halves(card.block);
      }
    }
  }
}

TEST(RulesCard, IsCutBetweenRulesAndSaysHowManyAreMissing) {
  const RulesCard::Card card = RulesCard::made(rules(10), titles(0), {.block = 400, .head = {}});
  EXPECT_EQ(card.kind, RulesCard::Kind::cut);
  EXPECT_THAT(card.block.text, ::testing::StartsWith("<user-rules>\n" + rules(5) + "\n\n(5 more"));
}

TEST(RulesCard, FillsTheRoomItHas) {
  // One byte less than the whole rules cuts one rule, as long as the line that says so fits.
  const std::string text = rules(20);
  const std::size_t whole = text.size() + RulesBlock::fenceSize;
  EXPECT_EQ(RulesCard::made(text, {}, {.block = whole, .head = {}}).kind, RulesCard::Kind::whole);
  const RulesCard::Card cut = RulesCard::made(text, {}, {.block = whole - 1, .head = {}});
  EXPECT_EQ(cut.kind, RulesCard::Kind::cut);
  EXPECT_GE(cut.block.text.size(), whole - 200);
}

TEST(RulesCard, PutsAllRulesBeforeTheIndexWhenOnlyOneFits) {
  const std::string text = rules(10);
  const std::size_t exact = text.size() + RulesBlock::fenceSize;
  const RulesCard::Card card = RulesCard::made(text, titles(50), {.block = exact, .head = {}});
  EXPECT_EQ(card.kind, RulesCard::Kind::whole);
  EXPECT_FALSE(card.block.indexSpan);
}

TEST(RulesCard, KeepsAllOfItWithinACeilingForItsHeadAlone) {
  const std::size_t ceiling = 2'000;
  for (int count = 1; count < 60; ++count) {
    SCOPED_TRACE(count);
    const RulesCard::Card card =
        RulesCard::made(rules(count), titles(20), {.block = {}, .head = ceiling});
    EXPECT_LE(card.block.text.size(), ceiling);
    EXPECT_TRUE(card.block.indexSpan);
    const bool bothFit = rules(count).size() <= ceiling * 3 / 4 - RulesBlock::fenceSize;
    if (bothFit) {
      EXPECT_EQ(card.kind, RulesCard::Kind::whole);
    }
  }
}

TEST(RulesCard, MayExceedACeilingForItsHeadWithItsIndexOnly) {
  // Where both cannot be had within it: rules that cannot be cut, and very little room.
  const std::string text(1'900, 'x');
  const RulesCard::Card card = RulesCard::made(text, titles(20), {.block = {}, .head = 2'000});
  EXPECT_EQ(card.kind, RulesCard::Kind::whole);
  EXPECT_TRUE(card.block.indexSpan);
  const RulesCard::Card small = RulesCard::made(rules(9), titles(20), {.block = {}, .head = 200});
  EXPECT_EQ(small.kind, RulesCard::Kind::cut);
  EXPECT_TRUE(small.block.indexSpan);
  EXPECT_LE(headSize(small.block), 200U);
}

TEST(RulesCard, LeavesAnIndexItsPartWhenRulesAreCutAnyway) {
  const RulesCard::Card card =
      RulesCard::made(rules(100), titles(50), {.block = 2'000, .head = {}});
  EXPECT_EQ(card.kind, RulesCard::Kind::cut);
  ASSERT_TRUE(card.block.indexSpan);
  EXPECT_GT(*card.block.indexSpan, 300U);
}

TEST(RulesCard, PointsToRulesThatCannotBeCut) {
  const std::string text(5'000, 'x');
  const RulesCard::Card card = RulesCard::made(text, titles(2), {.block = 500, .head = {}});
  EXPECT_EQ(card.kind, RulesCard::Kind::pointer);
  EXPECT_THAT(card.block.text, ::testing::HasSubstr("`rules_get`"));
  EXPECT_THAT(halves(card.block).index, ::testing::HasSubstr("Título número 1"));
  EXPECT_EQ(RulesCard::made(text, {}, {.block = 60, .head = {}}).kind, RulesCard::Kind::pointer);
  EXPECT_EQ(RulesCard::made(text, {}, {.block = 40, .head = {}}).kind, RulesCard::Kind::nothing);
}

TEST(RulesCard, MayBeAnIndexAlone) {
  const RulesCard::Card card = RulesCard::made("", titles(2), {});
  EXPECT_EQ(card.kind, RulesCard::Kind::whole);
  EXPECT_EQ(halves(card.block).head, "<user-rules>\n\n</user-rules>");
}

TEST(RulesCard, IsEmptyWhenThereIsNothing) {
  EXPECT_EQ(RulesCard::made("", {}, {}).block.text, "");
}

}  // namespace

}  // namespace quillstead::server
