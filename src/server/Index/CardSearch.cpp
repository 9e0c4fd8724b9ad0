#include "server/Index/CardSearch.h"

#include "server/Index/PhraseReader.h"
#include "server/Index/Ranking.h"
#include "server/Index/Words.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace quillstead::server::CardSearch {

namespace {

using Words::SearchTerm;

/// A term of the prompt, and the cards that have it.
struct Known {
  SearchTerm term;
  std::size_t place;      ///< in the prompt
  std::size_t cards = 0;  ///< how many have it, as far as they were counted
  Postings postings;
  bool isWhole = false;  ///< the postings are all there are
};

std::string expressionOf(const SearchTerm& term) {
  return '"' + term.word + (term.isBeginning ? "\"*" : "\"");
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

/// The next guess at `whole`, a word that no card has: first all words that begin with it, then
/// with one character less, and so on down to two thirds of it. `tried`: the last guess, or `whole`
/// itself. Absent when there is nothing left to try.
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

/// Looks up terms, one by one.
class Lookup {
 public:
  Lookup(PhraseReader& reader, std::size_t mostCounted, CommonTerms& common)
      : reader_(reader), mostCounted_(mostCounted), common_(common) {}

  /// The term, or a guess at it, with the cards that have it. Absent when the database failed.
  std::optional<Known> find(const SearchTerm& term, std::size_t place) {
    for (SearchTerm tried = term;; --guessesLeft_) {
      Known known{.term = std::move(tried), .place = place, .postings = {}};
      if (!read(known)) return std::nullopt;
      if (known.cards > 0 || guessesLeft_ == 0) return known;
      auto next = guess(term, known.term);
      if (!next) return known;
      tried = *std::move(next);
    }
  }

 private:
  bool read(Known& known) {
    const std::string expression = expressionOf(known.term);
    if (common_.contain(expression)) {
      known.cards = mostCounted_;
      return true;
    }
    auto found = reader_.read(expression, mostCounted_);
    if (!found) return false;
    known.cards = found->count;
    known.isWhole = found->isWhole;
    known.postings = std::move(found->postings);
    if (known.cards >= mostCounted_) common_.add(expression);
    return true;
  }

  PhraseReader& reader_;
  std::size_t mostCounted_;
  CommonTerms& common_;
  std::size_t guessesLeft_ = Ranking::mostGuesses;
};

std::optional<std::vector<Known>> lookedUp(PhraseReader& reader,
                                           const std::vector<SearchTerm>& terms,
                                           std::size_t mostCounted, CommonTerms& common) {
  Lookup lookup(reader, mostCounted, common);
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

constexpr std::size_t every = std::numeric_limits<std::size_t>::max();

/// A term in this many cards is common. A small store has no common terms.
std::size_t leastOfCommon(std::size_t cards) {
  return cards < Ranking::largeStore ? every : cards / 2 + 1;
}

std::optional<std::vector<Scored>> scores(const std::vector<const Known*>& terms,
                                          std::size_t unknown, PhraseReader& reader,
                                          std::size_t limit) {
  std::vector<CardScores::Phrase> phrases;
  std::size_t next = 0;  // place behind the term before
  for (const Known* const one : terms) {
    phrases.push_back({.cards = static_cast<double>(one->cards),
                       .says = one->term.says,
                       .script = one->term.script,
                       .follows = one->place == next,
                       .postings = &one->postings});
    next = one->place + 1;
  }
  return CardScores::of(phrases, unknown, reader, limit);
}

/// Reads all postings of the terms that are in fewer than `limit` cards.
bool readWhole(std::vector<Known>& terms, std::size_t limit, PhraseReader& reader) {
  return std::all_of(terms.begin(), terms.end(), [&](Known& one) {
    if (one.isWhole || one.cards >= limit) return true;
    auto found = reader.read(expressionOf(one.term), every);
    if (found) one.postings = std::move(found->postings);
    return found.has_value();
  });
}

}  // namespace

std::optional<std::vector<Scored>> find(Database& database, const std::vector<SearchTerm>& wanted,
                                        std::size_t cards, std::size_t limit, CommonTerms& common) {
  if (wanted.empty() || limit == 0) return std::vector<Scored>();
  auto reader = PhraseReader::of(database);
  if (!reader) return std::nullopt;
  // Beyond this a term is common, and the exact number of cards does not matter.
  const std::size_t mostCounted = leastOfCommon(cards);
  auto terms = lookedUp(*reader, wanted, mostCounted, common);
  if (!terms) return std::nullopt;
  const std::size_t unknown =
      std::erase_if(*terms, [](const Known& one) { return one.cards == 0; });

  // Terms in more than half of a large store's cards add next to nothing to a score, but with them
  // more than half of the cards would need one.
  if (!readWhole(*terms, mostCounted, *reader)) return std::nullopt;
  std::vector<const Known*> known;
  for (const Known& one : *terms) known.push_back(&one);
  std::vector<const Known*> rare = known;
  std::erase_if(rare, [mostCounted](const Known* one) { return one->cards >= mostCounted; });
  auto found = scores(rare, unknown, *reader, limit);
  if (!found || !found->empty() || rare.size() == known.size()) return found;
  if (!readWhole(*terms, every, *reader)) return std::nullopt;
  return scores(known, unknown, *reader, limit);
}

}  // namespace quillstead::server::CardSearch
