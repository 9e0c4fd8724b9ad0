#include "server/Index/Index.h"
#include "server/Index/IndexTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

namespace {

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t bound) {
  return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

std::string someWords(Random& random, std::size_t most) {
  constexpr auto words = std::to_array<std::string_view>(
      {"walrus", "ibex", "heron", "ibexes", "the", "fix", "file", "fetchWithRetry", "fetch_retry",
       "read-only", "1.2.3", "数据库", "データ", "백업서버", "รายงาน", "हिन्दी", "größer", "wal"});
  std::string text;
  for (std::size_t left = 1 + below(random, most); left > 0; --left) {
    text.append(words.at(below(random, words.size()))).append(" ");
  }
  return text;
}

struct File {
  Survey::File file;
  Card card;
};

std::vector<File> someFiles(Random& random) {
  std::vector<File> files;
  for (std::size_t number = 2 + below(random, 12); number > 0; --number) {
    const auto store = below(random, 2) == 0 ? Store::Kind::project : Store::Kind::personal;
    Card card{.title = someWords(random, 2), .tags = {someWords(random, 1)}, .body = {}};
    card.body = someWords(random, 6);
    if (!files.empty() && below(random, 3) == 0)
      card = files.back().card;  // equal but for its name
    files.push_back({.file = {.store = store, .name = std::to_string(number), .stamp = {}},
                     .card = std::move(card)});
  }
  return files;
}

/// An index to which the files were added in this order, and one more that is gone again.
Database indexOf(const std::vector<File>& files, const std::vector<std::size_t>& order) {
  Database database = Database::inMemory();
  EXPECT_TRUE(IndexTables::create(database));
  IndexTables::State state;
  IndexTables::Writer writer(database, state.cards);
  const Card gone{.title = "walrus", .tags = {}, .body = "heron ibex"};
  EXPECT_TRUE(writer.add({.store = Store::Kind::project, .name = "gone", .stamp = {}}, &gone, 1));
  for (const std::size_t at : order) {
    EXPECT_TRUE(writer.add(files[at].file, &files[at].card, at));
    if (at == order.size() / 2) {
      EXPECT_TRUE(writer.remove(1));
    }
  }
  EXPECT_TRUE(IndexTables::setState(database, state, {}));
  return database;
}

std::string answerOf(Database& database, std::string_view prompt) {
  CommonTerms common;
  const auto found = IndexQueries::search(database, Words::searchTerms(prompt), 8, common);
  if (!found) return "failed";
  std::string all;
  for (const CardPlace& place : *found) {
    all.append(nameOf(place.store)).append("/").append(place.fileName).append(" ");
  }
  return all;
}

TEST(Order, InWhichFilesWereWrittenDoesNotChangeAnAnswer) {
  Random random(20'261'122);  // NOLINT(cert-msc51-cpp): the same stores each time
  std::size_t withCards = 0;
  for (int store = 0; store < 1'000; ++store) {
    const std::vector<File> files = someFiles(random);
    std::vector<std::size_t> order(files.size());
    std::iota(order.begin(), order.end(), 0U);
    Database first = indexOf(files, order);
    std::shuffle(order.begin(), order.end(), random);
    Database second = indexOf(files, order);
    const std::string prompt = someWords(random, 4);
    const std::string answer = answerOf(first, prompt);
    ASSERT_EQ(answer, answerOf(second, prompt)) << "store " << store << ", prompt " << prompt;
    if (!answer.empty()) ++withCards;
  }
  EXPECT_GT(withCards, 500U);
}

}  // namespace

}  // namespace quillstead::server
