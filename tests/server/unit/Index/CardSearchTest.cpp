#include "server/Index/CardSearch.h"
#include "server/Index/IndexTables.h"

#include <gtest/gtest.h>

#include <algorithm>
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
    const auto terms = Words::searchTerms(prompt);
    const auto found = CardSearch::find(database, terms, cards, limit, common);
    if (!found) ADD_FAILURE() << "the database failed";
    for (const auto& one : *found) scores[one.id] = one.score;
    return scores;
  }

  /// Adds cards of random words, of which the first is the most frequent. Then for random prompts
  /// fewer results are the best of more.
  void expectTheBestOf(std::size_t vocabulary, std::size_t store) {
    std::mt19937 random(5);  // NOLINT(cert-msc51-cpp): the same cards each time
    const auto below = [&random](std::size_t bound) {
      return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
    };
    const auto some = [&](std::size_t most) {
      std::string text;
      for (std::size_t left = 1 + below(most); left > 0; --left) {
        text.append("walrus").append(std::to_string(below(1 + below(vocabulary)))).append(" ");
      }
      return text;
    };
    while (cards < store) add(some(12));
    for (int round = 0; round < 100; ++round) expectTheBestFor(some(6));
  }

  void expectTheBestFor(const std::string& prompt) {
    common = CommonTerms();
    const auto all = find(prompt, cards);
    ASSERT_FALSE(all.empty()) << prompt;
    std::vector<double> scores;
    for (const auto& [row, score] : all) scores.push_back(score);
    std::sort(scores.begin(), scores.end(), std::greater<>());
    EXPECT_GE(scores.back(), 0.3 * scores.front());
    for (const std::size_t limit : {1U, 3U, 5U}) {
      auto expected = all;
      const double least = scores[std::min<std::size_t>(limit, scores.size()) - 1];
      std::erase_if(expected, [least](const auto& one) { return one.second < least; });
      EXPECT_EQ(find(prompt, limit), expected) << prompt << limit;
    }
  }

  Database database = Database::inMemory();
  IndexTables::CardCounts counts{};
  std::size_t cards = 0;
  CommonTerms common;
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

TEST_F(CardSearchTest, KeepsTheBestWhateverTheLimit) { expectTheBestOf(10, 400); }

TEST_F(CardSearchTest, KeepsTheBestOfALargeStoreWhateverTheLimit) { expectTheBestOf(100, 1'500); }

TEST_F(CardSearchTest, FindsCardsWithFrequentWordsOnlyBesideOneWithARareWord) {
  for (std::size_t number = 0; number < large; ++number) {
    add(number == 7 ? "walrus" : number % 5 == 0 ? "heron egret" : "other words");
  }
  const auto found = find("walrus heron egret", cards);
  ASSERT_EQ(found.size(), 1 + large / 5);
  EXPECT_TRUE(found.contains(8)) << "with the rare word";
  EXPECT_TRUE(found.contains(1)) << "with the other two";
}

TEST_F(CardSearchTest, DoesNotReadAgainWhatItFoundToBeCommon) {
  for (std::size_t number = 0; number < large; ++number) {
    add(number % 100 == 0 ? "heron egret" : "heron other");
  }
  const auto found = find("heron egret", 8);
  EXPECT_TRUE(common.contain("\"heron\""));
  EXPECT_FALSE(common.contain("\"egret\""));
  EXPECT_EQ(find("heron egret", 8), found) << "known to be common now";
  const auto all = find("heron", cards);
  EXPECT_EQ(all.size(), cards) << "there is no other word";
  common.add("\"egret\"");
  EXPECT_EQ(find("heron egret", cards).size(), cards) << "believed, as both are common";
}

TEST_F(CardSearchTest, FindsTheSameWhenItKnowsThatTheBeginningOfAWordIsCommon) {
  for (std::size_t number = 0; number < large; ++number) {
    add(number % 3 == 0 ? "walrus herons" : "walrus");
    add("walrus herons herons of the " + std::string(number % 2 == 0 ? "north" : "walrus"));
  }
  const auto first = find("walrus heronsa", cards);
  ASSERT_FALSE(first.empty());
  EXPECT_TRUE(common.contain("\"herons\"*"));
  EXPECT_EQ(find("walrus heronsa", cards), first);
}

TEST_F(CardSearchTest, IsAbsentWhenTheTablesAreGone) {
  add("walrus");
  ASSERT_TRUE(database.run("DROP TABLE cards"));
  EXPECT_FALSE(CardSearch::find(database, Words::searchTerms("walrus"), cards, 8, common));
}

}  // namespace

}  // namespace quillstead::server
