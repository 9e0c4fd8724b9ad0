#include "server/Index/CardSearch.h"

#include "server/Index/PhraseReader.h"
#include "server/Index/Ranking.h"
#include "server/Index/Words.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <limits>
#include <string>

namespace quillstead::server::CardSearch {

namespace {

using Words::SearchTerm;

/// A term as the store knows it.
struct Known {
  SearchTerm term;
  std::size_t place;      ///< in the prompt
  std::size_t cards = 0;  ///< that have it, or as many as were counted
  Postings postings;
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

/// Of a term in more cards it is only counted at first: it may be too common to matter.
constexpr std::size_t fewPlaced = 32;

/// Looks terms up, one after the other.
class Lookup {
 public:
  Lookup(PhraseReader& reader, std::size_t mostCounted)
      : reader_(reader), mostCounted_(mostCounted) {}

  /// The term, or the guess at it, with the cards that have it. Absent when the database failed.
  std::optional<Known> find(const SearchTerm& term, std::size_t place) {
    Known known{.term = term, .place = place, .postings = {}};
    for (;;) {
      auto postings = reader_.read(expressionOf(known.term), mostCounted_, fewPlaced);
      if (!postings) return std::nullopt;
      known.cards = postings->rows.size();
      known.postings = std::move(*postings);
      if (known.cards > 0 || guessesLeft_ == 0) return known;
      const auto next = guess(term, known.term);
      if (!next) return known;
      known.term = *next;
      --guessesLeft_;
    }
  }

 private:
  PhraseReader& reader_;
  std::size_t mostCounted_;
  std::size_t guessesLeft_ = Ranking::mostGuesses;
};

std::optional<std::vector<Known>> lookedUp(PhraseReader& reader,
                                           const std::vector<SearchTerm>& terms,
                                           std::size_t mostCounted) {
  Lookup lookup(reader, mostCounted);
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
std::size_t mostOfRare(std::size_t cards) {
  return cards < Ranking::largeStore ? cards : cards / 2;
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

/// Reads all there is of the terms that are in fewer than `limit` cards.
bool readWhole(std::vector<Known>& terms, std::size_t limit, PhraseReader& reader) {
  constexpr std::size_t all = std::numeric_limits<std::size_t>::max();
  return std::all_of(terms.begin(), terms.end(), [&](Known& one) {
    if (one.postings.areWhole() || one.cards >= limit) return true;
    auto postings = reader.read(expressionOf(one.term), all, all);
    if (postings) one.postings = std::move(*postings);
    return postings.has_value();
  });
}

}  // namespace

std::optional<std::vector<Scored>> find(Database& database, std::string_view prompt,
                                        std::size_t cards, std::size_t limit) {
  const std::vector<SearchTerm> wanted = Words::searchTerms(prompt);
  if (wanted.empty() || limit == 0) return std::vector<Scored>();
  auto reader = PhraseReader::of(database);
  if (!reader) return std::nullopt;
  // How many more cards have a common term does not matter.
  const std::size_t mostCounted = mostOfRare(cards) + 1;
  auto terms = lookedUp(*reader, wanted, mostCounted);
  if (!terms) return std::nullopt;
  const std::size_t unknown =
      std::erase_if(*terms, [](const Known& one) { return one.cards == 0; });

  // The terms that are in more than half of a large store's cards add next to nothing to a score,
  // but would make it be computed for all those cards.
  if (!readWhole(*terms, mostCounted, *reader)) return std::nullopt;
  std::vector<const Known*> all;
  for (const Known& one : *terms) all.push_back(&one);
  std::vector<const Known*> rare = all;
  std::erase_if(rare, [mostCounted](const Known* one) { return one->cards >= mostCounted; });
  auto found = scores(rare, unknown, *reader, limit);
  if (!found || !found->empty() || rare.size() == all.size()) return found;
  if (!readWhole(*terms, std::numeric_limits<std::size_t>::max(), *reader)) return std::nullopt;
  return scores(all, unknown, *reader, limit);
}

}  // namespace quillstead::server::CardSearch
