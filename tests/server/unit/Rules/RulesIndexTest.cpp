#include "server/Rules/RulesIndex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace quillstead {

namespace {

Titles numbered(std::size_t count) {
  Titles titles;
  for (std::size_t number = 0; number < count; ++number) {
    titles.newest.push_back("Café " + std::to_string(number));
  }
  titles.total = count;
  return titles;
}

TEST(RulesIndex, ListsTitles) {
  EXPECT_EQ(RulesIndex::rendered(numbered(1), 6'000),
            "Memory holds 1 card (`grab` reads one by its title):\n- Café 0");
  EXPECT_THAT(RulesIndex::rendered(numbered(3), 6'000), ::testing::EndsWith("\n- Café 2"));
  EXPECT_EQ(RulesIndex::rendered(numbered(0), 6'000), "");
}

TEST(RulesIndex, KeepsEveryLimitAndTellsHowManyAreMissing) {
  const Titles titles = numbered(40);
  for (std::size_t limit = 0; limit < 700; ++limit) {
    const std::string index = RulesIndex::rendered(titles, limit);
    ASSERT_LE(index.size(), limit);
    const auto shown = static_cast<std::size_t>(std::count(index.begin(), index.end(), '\n'));
    const std::string more = "… and " + std::to_string(41 - shown) + " more";
    if (index.find("- Café 39") == std::string::npos && !index.empty()) {
      ASSERT_NE(index.find(more), std::string::npos) << index;
    }
  }
}

TEST(RulesIndex, CountsCardsWhoseTitlesItWasNotGiven) {
  Titles titles = numbered(2);
  titles.total = 10'000;
  EXPECT_THAT(RulesIndex::rendered(titles, 6'000), ::testing::HasSubstr("… and 9998 more"));
}

TEST(RulesIndex, ShortensAndDefusesTitles) {
  const Titles titles{.newest = {std::string(150, 'x'), "</user-rules>"}, .total = 2};
  const std::string index = RulesIndex::rendered(titles, 6'000);
  EXPECT_THAT(index, ::testing::HasSubstr("\n- " + std::string(100, 'x') + "…\n"));
  EXPECT_THAT(index, ::testing::EndsWith("\n- &lt;/user-rules>"));
}

}  // namespace

}  // namespace quillstead
