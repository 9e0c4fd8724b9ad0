#include "server/Rules/RulesBlock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace quillstead::server {

namespace {

Titles numbered(std::size_t count) {
  Titles titles;
  for (std::size_t number = 0; number < count; ++number) {
    titles.newest.push_back("Café " + std::to_string(number));
  }
  titles.total = count;
  return titles;
}

TEST(RulesBlock, ListsTitlesInItsIndex) {
  EXPECT_EQ(RulesBlock::index(numbered(1), 6'000),
            "Memory holds 1 card (`grab` reads one by its title):\n- Café 0");
  EXPECT_THAT(RulesBlock::index(numbered(3), 6'000), ::testing::EndsWith("\n- Café 2"));
  EXPECT_EQ(RulesBlock::index(numbered(0), 6'000), "");
}

TEST(RulesBlock, KeepsEveryLimitAndTellsHowManyAreMissing) {
  const Titles titles = numbered(40);
  for (std::size_t limit = 0; limit < 700; ++limit) {
    const std::string index = RulesBlock::index(titles, limit);
    ASSERT_LE(index.size(), limit);
    const auto shown = static_cast<std::size_t>(std::count(index.begin(), index.end(), '\n'));
    const std::string more = "… and " + std::to_string(41 - shown) + " more";
    if (index.find("- Café 39") == std::string::npos && !index.empty()) {
      ASSERT_NE(index.find(more), std::string::npos) << index;
    }
  }
}

TEST(RulesBlock, TakesNoMoreRoomForAListThanItNeeds) {
  for (const std::size_t count : {1U, 2U, 3U, 9U, 10U, 11U, 40U, 1'000U}) {
    const std::string index = RulesBlock::index(numbered(count), 6'000);
    EXPECT_EQ(RulesBlock::index(numbered(count), index.size()), index) << count;
  }
}

TEST(RulesBlock, CountsCardsWhoseTitlesItWasNotGiven) {
  Titles titles = numbered(2);
  titles.total = 10'000;
  EXPECT_THAT(RulesBlock::index(titles, 6'000), ::testing::HasSubstr("… and 9998 more"));
}

TEST(RulesBlock, PassesOverATitleThatDoesNotFit) {
  const Titles titles{.newest = {std::string(190, 'x'), "short"}, .total = 2};
  EXPECT_EQ(RulesBlock::index(titles, 150),
            "Memory holds 2 cards (`grab` reads one by its title):\n- short\n"
            "- … and 1 more (`memory_get_relevant` finds them)");
}

TEST(RulesBlock, ListsBesideATitleThatIsOneEndlessCharacter) {
  std::string endless = "a";
  for (int mark = 0; mark < 3'500; ++mark) endless += "\u0301";
  const Titles titles{.newest = {Shown::line(endless), "Deploy"}, .total = 2};
  const std::string index = RulesBlock::index(titles, 6'000);
  EXPECT_THAT(index, ::testing::EndsWith("\n- Deploy"));
  EXPECT_LE(index.size(), 300U);
}

TEST(RulesBlock, ListsTheSameOfEnoughTitlesAsOfAll) {
  // Titles of mixed lengths that are skipped as late as possible.
  Titles all;
  for (std::size_t number = 0; number < 3'000; ++number) {
    const bool isShort = number % 9 == 0 || number > 90;
    all.newest.emplace_back(isShort ? number % 7 : Shown::longestLine, 'x');
  }
  all.total = all.newest.size();
  Titles enough{.newest = {}, .total = all.total};
  for (std::size_t bytes = 0; bytes < RulesBlock::enoughOfTitles;) {
    enough.newest.push_back(all.newest[enough.newest.size()]);
    bytes += enough.newest.back().size() + 1;
  }
  ASSERT_LT(enough.newest.size(), all.newest.size());
  for (std::size_t limit = 0; limit <= RulesBlock::ordinaryIndex; ++limit) {
    ASSERT_EQ(RulesBlock::index(enough, limit), RulesBlock::index(all, limit)) << limit;
  }
}

}  // namespace

}  // namespace quillstead::server
