#include "server/Index/CardSearch.h"
#include "server/Index/IndexTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

namespace {

constexpr std::size_t large = 1'000;  // cards, so many that a word of most of them is common

/// An index of cards with these bodies, whose rows count from 1.
class CardSearchTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(IndexTables::create(database)); }

  void add(const std::string& body) {
    IndexTables::Writer writer(database, counts);
    const Card card{.title = "T", .tags = {}, .body = body};
    const Survey::File file{
        .store = Store::Kind::project, .name = std::to_string(++cards), .stamp = {}};
    ASSERT_TRUE(writer.add(file, &card, cards));
  }

  /// The score of each card that is found, by its row.
  std::map<std::int64_t, double> find(std::string_view prompt, std::size_t limit) {
    std::map<std::int64_t, double> scores;
    const auto found = CardSearch::find(database, prompt, cards, limit);
    if (!found) ADD_FAILURE() << "the database failed";
    for (const auto& one : *found) scores[one.id] = one.score;
    return scores;
  }

  Database database = Database::inMemory();
  IndexTables::CardCounts counts{};
  std::size_t cards = 0;
};

TEST_F(CardSearchTest, WeighsWordsAlikeThatMostCardsOfALargeStoreHave) {
  add("walrus alone");
  add("heron alone");
  for (std::size_t number = 0; number < large; ++number) {
    add(number % 5 < 3 ? "walrus heron" : "heron other");
  }
  const auto found = find("walrus heron", cards);
  ASSERT_EQ(found.size(), cards);
  EXPECT_DOUBLE_EQ(found.at(1), found.at(2)) << "one word is in 6 of 10 cards, the other in all";
  EXPECT_GT(found.at(3), found.at(1));
}

TEST_F(CardSearchTest, PassesCommonWordsOverBesideARareOne) {
  for (std::size_t number = 0; number < large; ++number) {
    add(number == 500 ? "heron egret" : "heron other");
  }
  const auto found = find("heron egret", cards);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.begin()->first, 501);
}

TEST_F(CardSearchTest, SeesWhichWordsFollowEachOtherInHoweverManyCards) {
  constexpr std::size_t having = 300;
  for (std::size_t number = 0; number < large; ++number) {
    const bool has = number < having;
    const bool together = number + 1 == having;
    add(together ? "other words walrus heron" : has ? "heron other words walrus" : "other words");
  }
  const auto found = find("walrus heron", cards);
  ASSERT_EQ(found.size(), having);
  const auto isLess = [](const auto& one, const auto& other) { return one.second < other.second; };
  EXPECT_EQ(std::max_element(found.begin(), found.end(), isLess)->first, having);
}

TEST_F(CardSearchTest, KeepsTheBestWhateverTheLimit) {
  constexpr auto words = std::to_array<std::string_view>(
      {"walrus", "ibex", "heron", "egret", "gull", "badger", "otter", "lynx", "moose", "bison"});
  std::mt19937 random(5);  // NOLINT(cert-msc51-cpp): the same cards each time
  const auto below = [&random](std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
  };
  const auto some = [&](std::size_t most) {
    std::string text;
    for (std::size_t left = 1 + below(most); left > 0; --left) {
      text.append(words.at(below(words.size()))).append(" ");
    }
    return text;
  };
  for (int number = 0; number < 400; ++number) add(some(12));
  for (int round = 0; round < 100; ++round) {
    const std::string prompt = some(4);
    const auto all = find(prompt, cards);
    std::vector<double> scores;
    for (const auto& [row, score] : all) scores.push_back(score);
    std::sort(scores.begin(), scores.end(), std::greater<>());
    ASSERT_GE(scores.size(), 5U) << prompt;
    EXPECT_GE(scores.back(), 0.3 * scores.front());
    for (const std::size_t limit : {1U, 3U, 5U}) {
      auto expected = all;
      std::erase_if(expected, [&](const auto& one) { return one.second < scores[limit - 1]; });
      EXPECT_EQ(find(prompt, limit), expected) << prompt << limit;
    }
  }
}

TEST_F(CardSearchTest, IsAbsentWhenTheTablesAreGone) {
  add("walrus");
  ASSERT_TRUE(database.run("DROP TABLE cards"));
  EXPECT_FALSE(CardSearch::find(database, "walrus", cards, 8));
}

}  // namespace

}  // namespace quillstead::server
