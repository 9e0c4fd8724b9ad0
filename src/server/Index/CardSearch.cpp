#include "server/Index/CardSearch.h"

#include "server/Index/RankFunction.h"
#include "server/Index/Ranking.h"
#include "server/Index/Words.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <string>

namespace quillstead::server::CardSearch {

namespace {

using Words::SearchTerm;

/// A term as the store knows it.
struct Known {
  SearchTerm term;
  std::size_t place;       ///< in the prompt
  std::int64_t cards = 0;  ///< that have it, or as many as were counted
};

std::string expressionOf(const SearchTerm& term) {
  return '"' + term.word + (term.isBeginning ? "\"*" : "\"");
}

std::optional<std::int64_t> numberFrom(Statement& read) {
  if (read.step() != Statement::Step::row) return std::nullopt;
  const std::int64_t number = read.integer(0);
  read.reset();
  return number;
}

bool hasDigit(std::string_view word) {
  return word.find_first_of("0123456789") != std::string_view::npos;
}

std::string_view withoutLastCharacter(std::string_view word) {
  const auto isContinuation = [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
  };
  while (!word.empty() && isContinuation(word.back())) word.remove_suffix(1);
  word.remove_suffix(word.empty() ? 0 : 1);
  return word;
}

/// What may be meant by `whole`, which no card has, after `tried`, which none has either: words
/// that begin with it, then words that begin with most of it. Absent when there is no more to try.
std::optional<SearchTerm> guess(const SearchTerm& whole, const SearchTerm& tried) {
  std::string_view beginning = tried.word;
  if (tried.isBeginning) beginning = withoutLastCharacter(beginning);
  const bool isMost = beginning.size() * 3 >= whole.word.size() * 2;
  if (!isMost || beginning.size() < Ranking::shortestGuess || hasDigit(whole.word)) {
    return std::nullopt;
  }
  const bool isCertain = beginning == whole.word && beginning.size() >= Ranking::certainBeginning;
  return SearchTerm{.word = std::string(beginning),
                    .says = isCertain ? whole.says : std::min(whole.says, Ranking::guessedWord),
                    .isBeginning = true};
}

/// Looks terms up, one after the other.
class Lookup {
 public:
  Lookup(Database& database, std::int64_t mostCounted)
      : read_(database.prepare(
            "SELECT count(*) FROM (SELECT 1 FROM cards WHERE cards MATCH ? LIMIT ?)")),
        mostCounted_(mostCounted) {}

  /// The term, or the guess at it, with the number of cards that have it. Absent when the database
  /// failed.
  std::optional<Known> find(const SearchTerm& term, std::size_t place) {
    Known known{.term = term, .place = place};
    for (;;) {
      const std::string expression = expressionOf(known.term);
      const auto cards = numberFrom(read_.bind(1, expression).bind(2, mostCounted_));
      if (!cards) return std::nullopt;
      known.cards = *cards;
      if (known.cards > 0 || guessesLeft_ == 0) return known;
      const auto next = guess(term, known.term);
      if (!next) return known;
      known.term = *next;
      --guessesLeft_;
    }
  }

 private:
  Statement read_;
  std::int64_t mostCounted_;
  std::size_t guessesLeft_ = Ranking::mostGuesses;
};

std::optional<std::vector<Known>> lookedUp(Database& database, const std::vector<SearchTerm>& terms,
                                           std::int64_t mostCounted) {
  Lookup lookup(database, mostCounted);
  std::vector<Known> all;
  for (const SearchTerm& term : terms) {
    auto one = lookup.find(term, all.size());
    if (!one) return std::nullopt;
    const bool isNew = std::none_of(all.begin(), all.end(), [&one](const Known& other) {
      return other.term.word == one->term.word && other.term.isBeginning == one->term.isBeginning;
    });
    if (!isNew) one->cards = 0;
    all.push_back(std::move(*one));
  }
  return all;
}

/// A term that is in more cards is common. None is in a small store.
std::int64_t mostOfRare(std::int64_t cards) {
  return cards < Ranking::largeStore ? cards : cards / 2;
}

/// Without the terms that are in more than half of a large store's cards: they add next to nothing
/// to a score, but make it be computed for all those cards.
std::vector<Known> withoutCommon(const std::vector<Known>& terms, std::int64_t cards) {
  std::vector<Known> rare = terms;
  std::erase_if(rare, [cards](const Known& one) { return one.cards > mostOfRare(cards); });
  return rare;
}

std::optional<std::vector<Scored>> scores(Database& database, const std::vector<Known>& terms,
                                          std::size_t unknown) {
  std::string expression;
  std::vector<RankFunction::Phrase> phrases;
  for (const Known& one : terms) {
    if (!expression.empty()) expression += " OR ";
    expression += expressionOf(one.term);
    const bool follows = phrases.empty() || (&one)[-1].place + 1 == one.place;
    phrases.push_back(
        {.cards = one.cards, .says = one.term.says, .script = one.term.script, .follows = follows});
  }
  RankFunction rank(std::move(phrases), unknown);
  Statement read =
      database.prepare("SELECT rowid, cardScore(cards, ?2) FROM cards WHERE cards MATCH ?1");
  rank.bindTo(read.bind(1, expression), 2);
  std::vector<Scored> all;
  for (;;) {
    const Statement::Step step = read.step();
    if (step == Statement::Step::done) return all;
    if (step == Statement::Step::failed) return std::nullopt;
    const double score = read.real(1);
    if (score > 0) all.push_back({.id = read.integer(0), .score = score});
  }
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
  const double least = std::max(scored[last].score, best * Ranking::leastPartOfBest);
  std::erase_if(scored, [least](const Scored& one) { return one.score < least; });
}

}  // namespace

std::optional<std::vector<Scored>> find(Database& database, std::string_view prompt,
                                        std::size_t limit) {
  const std::vector<SearchTerm> wanted = Words::searchTerms(prompt);
  if (wanted.empty() || limit == 0) return std::vector<Scored>();
  Statement count = database.prepare("SELECT count(*) FROM files");
  const auto cards = numberFrom(count);
  if (!cards) return std::nullopt;
  // How many more cards have a common term does not matter.
  auto terms = lookedUp(database, wanted, mostOfRare(*cards) + 1);
  if (!terms) return std::nullopt;
  const std::size_t unknown =
      std::erase_if(*terms, [](const Known& one) { return one.cards == 0; });
  if (terms->empty()) return std::vector<Scored>();

  if (!RankFunction::install(database)) return std::nullopt;
  const std::vector<Known> rare = withoutCommon(*terms, *cards);
  std::vector<Scored> found;
  if (!rare.empty()) {
    auto scored = scores(database, rare, unknown);
    if (!scored) return std::nullopt;
    found = std::move(*scored);
  }
  if (found.empty() && rare.size() < terms->size()) {
    auto scored = scores(database, *terms, unknown);
    if (!scored) return std::nullopt;
    found = std::move(*scored);
  }
  keepBest(found, limit);
  return found;
}

}  // namespace quillstead::server::CardSearch
