#include "server/Index/IndexQuestions.h"

#include "server/Index/Words.h"

#include <algorithm>
#include <string>
#include <tuple>

namespace quillstead::IndexQuestions {

namespace {

/// A prompt may carry a whole log: its first words decide.
constexpr std::size_t mostWords = 64;
constexpr std::size_t mostPromptBytes = 32'768;

/// A card whose score is below this part of the best is not worth its room.
constexpr double leastPartOfBest = 0.2;

struct Scored {
  std::int64_t id;
  double score;  ///< the higher the better
};

struct Candidate {
  double score;
  CardPlace place;
};

std::string quoted(const std::string& word) { return '"' + word + '"'; }

/// The words as an FTS5 expression, any of which may match.
std::string expressionOf(const std::vector<std::string>& words) {
  std::string expression;
  for (const std::string& word : words) {
    if (!expression.empty()) expression += " OR ";
    expression += quoted(word);
  }
  return expression;
}

std::optional<std::vector<Scored>> scores(Database& database, const std::string& expression) {
  std::vector<Scored> all;
  Statement read =
      database.prepare("SELECT rowid, bm25(cards, 8.0, 4.0, 1.0) FROM cards WHERE cards MATCH ?");
  read.bind(1, expression);
  for (;;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) return all;
    if (step == Statement::Step::failed) return std::nullopt;
    all.push_back({.id = read.integer(0), .score = -read.real(1)});
  }
}

std::optional<std::int64_t> numberFrom(Statement& read) {
  if (read.step() != Statement::Step::row) return std::nullopt;
  return read.integer(0);
}

/// The words without those that are in more than half of a large store's cards: they add next to
/// nothing to a rank, but make it be computed for all those cards. Absent when the database failed.
std::optional<std::vector<std::string>> withoutCommon(Database& database,
                                                      const std::vector<std::string>& words) {
  constexpr std::int64_t largeStore = 1'000;
  Statement count = database.prepare("SELECT count(*) FROM files");
  const auto cards = numberFrom(count);
  if (!cards) return std::nullopt;
  if (*cards < largeStore) return words;

  std::vector<std::string> rare;
  Statement read =
      database.prepare("SELECT count(*) FROM (SELECT 1 FROM cards WHERE cards MATCH ? LIMIT ?)");
  const std::int64_t half = *cards / 2;
  for (const std::string& word : words) {
    const std::string expression = quoted(word);
    const auto found = numberFrom(read.bind(1, expression).bind(2, half));
    if (!found) return std::nullopt;
    read.reset();
    if (*found < half) rare.push_back(word);
  }
  return rare;
}

/// The cards that any of the words is in. Absent when the database failed.
std::optional<std::vector<Scored>> matches(Database& database,
                                           const std::vector<std::string>& words) {
  const auto rare = withoutCommon(database, words);
  if (!rare) return std::nullopt;
  if (!rare->empty()) {
    auto scored = scores(database, expressionOf(*rare));
    if (!scored || !scored->empty()) return scored;
  }
  if (rare->size() == words.size()) return std::vector<Scored>();
  return scores(database, expressionOf(words));
}

/// Keeps those that may be among the `limit` best, equal ones included.
void keepBest(std::vector<Scored>& scored, std::size_t limit) {
  const auto isBetter = [](const Scored& one, const Scored& other) {
    return one.score > other.score;
  };
  if (scored.empty()) return;
  const std::size_t last = std::min(limit, scored.size()) - 1;
  std::nth_element(scored.begin(), scored.begin() + static_cast<std::ptrdiff_t>(last), scored.end(),
                   isBetter);
  const double best = std::min_element(scored.begin(), scored.end(), isBetter)->score;
  const double least = std::max(scored[last].score, best * leastPartOfBest);
  std::erase_if(scored, [least](const Scored& one) { return one.score < least; });
}

bool comesBefore(const Candidate& one, const Candidate& other) {
  if (one.score != other.score) return one.score > other.score;
  return std::tie(one.place.store, one.place.fileName) <
         std::tie(other.place.store, other.place.fileName);
}

Store::Kind kindOf(std::int64_t column) {
  return column == static_cast<std::int64_t>(Store::Kind::project) ? Store::Kind::project
                                                                   : Store::Kind::personal;
}

CardPlace placeIn(const Statement& row) {
  return {.store = kindOf(row.integer(0)), .fileName = std::string(row.text(1))};
}

std::optional<std::vector<CardPlace>> places(Statement& read) {
  std::vector<CardPlace> all;
  for (;;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) return all;
    if (step == Statement::Step::failed) return std::nullopt;
    all.push_back(placeIn(read));
  }
}

}  // namespace

std::optional<std::vector<CardPlace>> search(Database& database, std::string_view prompt,
                                             std::size_t limit) {
  std::vector<CardPlace> found;
  std::vector<std::string> words = Words::telling(prompt.substr(0, mostPromptBytes));
  if (words.empty() || limit == 0) return found;
  words.resize(std::min(words.size(), mostWords));
  std::optional<std::vector<Scored>> scored = matches(database, words);
  if (!scored) return std::nullopt;
  keepBest(*scored, limit);

  std::vector<Candidate> candidates;
  Statement read = database.prepare("SELECT store, name FROM files WHERE id = ?");
  for (const Scored& one : *scored) {
    if (read.bind(1, one.id).step() != Statement::Step::row) return std::nullopt;
    candidates.push_back({.score = one.score, .place = placeIn(read)});
    read.reset();
  }
  std::sort(candidates.begin(), candidates.end(), comesBefore);
  candidates.resize(std::min(candidates.size(), limit));
  for (Candidate& candidate : candidates) found.push_back(std::move(candidate.place));
  return found;
}

std::optional<Titles> titles(Database& database, std::string_view, std::size_t limit) {
  Titles titles;
  Statement count = database.prepare("SELECT count(*) FROM files WHERE isCard = 1");
  if (count.step() != Statement::Step::row) return std::nullopt;
  titles.total = static_cast<std::size_t>(count.integer(0));

  Statement read = database.prepare(
      "SELECT title FROM files WHERE isCard = 1 ORDER BY store, modified DESC, name LIMIT ?");
  read.bind(1, static_cast<std::int64_t>(limit));
  for (;;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) return titles;
    if (step == Statement::Step::failed) return std::nullopt;
    titles.newest.emplace_back(read.text(0));
  }
}

std::optional<std::vector<CardPlace>> withTitle(Database& database, std::string_view title,
                                                std::size_t limit) {
  for (const std::string_view condition : {"title = ?", "title = ? COLLATE NOCASE"}) {
    Statement read = database.prepare("SELECT store, name FROM files WHERE isCard AND " +
                                      std::string(condition) + " ORDER BY store, name LIMIT ?");
    auto found = places(read.bind(1, title).bind(2, static_cast<std::int64_t>(limit)));
    if (!found || !found->empty()) return found;
  }
  return std::vector<CardPlace>();
}

}  // namespace quillstead::IndexQuestions
