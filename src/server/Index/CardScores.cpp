#include "server/Index/CardScores.h"

#include "server/Index/Ranking.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <queue>
#include <span>
#include <tuple>

namespace quillstead::server::CardScores {

namespace {

using Text::PairedScript;

constexpr std::array<double, 3> columnWeights{Ranking::titleWeight, Ranking::tagWeight,
                                              Ranking::bodyWeight};
constexpr std::size_t scripts = static_cast<std::size_t>(PairedScript::alphabet) + 1;
using OfEachScript = std::array<double, scripts>;

/// How much it tells that a card has a word: the fewer cards have it, the more.
double rarity(double cards, double having) {
  constexpr double half = 0.5;
  return std::log1p((cards - having + half) / (having + half));
}

/// What a card needs of the weight of the prompt's terms in a script for them to say something.
double leastShare(PairedScript script) {
  if (script == PairedScript::hangul) return Ranking::leastPairsOfHangul;
  return script == PairedScript::alphabet ? Ranking::leastRunsOfAlphabet : 0;
}

std::size_t placeOf(PairedScript script) { return static_cast<std::size_t>(script); }

double weightOf(const Postings::Place& place) {
  return columnWeights.at(static_cast<std::size_t>(place.column));
}

/// The prompt's side of a score.
struct Query {
  const std::vector<Phrase>& phrases;
  std::vector<double> weights;   ///< of the phrases: how rare each is
  OfEachScript scriptWeights{};  ///< of the phrases of each
  double allWeights = 0;         ///< of the prompt's words, unknown ones included
  double averageLength = 1;      ///< words of a card

  Query(const std::vector<Phrase>& all, std::size_t unknown, PhraseReader::Totals totals)
      : phrases(all) {
    const double cards = std::max(totals.rows, 1.0);
    averageLength = std::max(totals.words / cards, 1.0);
    allWeights = static_cast<double>(unknown) * rarity(cards, 0);
    for (const Phrase& phrase : phrases) {
      weights.push_back(rarity(cards, phrase.cards));
      scriptWeights.at(placeOf(phrase.script)) += weights.back();
    }
    for (const double weight : scriptWeights) allWeights += weight;
  }
};

/// What a card has of one phrase.
struct Match {
  std::size_t phrase;
  std::size_t begin;  ///< among the phrase's places
  std::size_t end;
};

/// Gives the cards that have any of the phrases, in the order of their rows, each with what it has.
class Walk {
 public:
  explicit Walk(const std::vector<Phrase>& phrases) : phrases_(phrases), next_(phrases.size()) {}

  /// False behind the last card.
  bool step() {
    matches_.clear();
    card_ = std::numeric_limits<std::int64_t>::max();
    for (std::size_t phrase = 0; phrase < phrases_.size(); ++phrase) {
      if (hasMore(phrase)) card_ = std::min(card_, row(phrase));
    }
    for (std::size_t phrase = 0; phrase < phrases_.size(); ++phrase) {
      if (!hasMore(phrase) || row(phrase) != card_) continue;
      const std::vector<std::size_t>& ends = phrases_[phrase].postings->ends;
      const std::size_t at = next_[phrase]++;
      matches_.push_back({.phrase = phrase, .begin = at == 0 ? 0 : ends[at - 1], .end = ends[at]});
    }
    return !matches_.empty();
  }

  [[nodiscard]] std::int64_t card() const { return card_; }
  [[nodiscard]] const std::vector<Match>& matches() const { return matches_; }

 private:
  [[nodiscard]] bool hasMore(std::size_t phrase) const {
    return next_[phrase] < phrases_[phrase].postings->rows.size();
  }
  [[nodiscard]] std::int64_t row(std::size_t phrase) const {
    return phrases_[phrase].postings->rows[next_[phrase]];
  }

  const std::vector<Phrase>& phrases_;
  std::vector<std::size_t> next_;  ///< for each phrase, the first row that was not given
  std::int64_t card_ = 0;
  std::vector<Match> matches_;  ///< in the order of their phrases
};

/// One card's side of a score.
class CardMatches {
 public:
  CardMatches(const Query& query, std::span<const Match> matches)
      : query_(query), matches_(matches) {
    bool mayFollow = false;
    for (std::size_t at = 0; at < matches_.size(); ++at) {
      mayFollow = mayFollow || (at > 0 && matches_[at - 1].phrase + 1 == matches_[at].phrase);
      for (std::size_t place = matches_[at].begin; place < matches_[at].end; ++place) {
        frequencies_.at(at) += weightOf(placesOf(matches_[at])[place]);
      }
    }
    if (mayFollow) follow();
  }

  [[nodiscard]] bool sayEnough() const {
    OfEachScript says{};
    OfEachScript weights{};
    for (const Match& match : matches_) {
      const std::size_t phrase = match.phrase;
      const PairedScript script = query_.phrases[phrase].script;
      says.at(placeOf(script)) += query_.phrases[phrase].says;
      const bool counts = script != PairedScript::alphabet || isInRun(phrase);
      if (counts) weights.at(placeOf(script)) += query_.weights[phrase];
    }
    double all = 0;
    for (std::size_t at = 0; at < says.size(); ++at) {
      const double least = query_.scriptWeights.at(at) * leastShare(PairedScript(at));
      if (weights.at(at) >= least) all += says.at(at);
    }
    return all >= Ranking::enough;
  }

  /// `length`: words of the card.
  [[nodiscard]] double score(double length) const {
    using namespace Ranking;
    const double part = length / query_.averageLength;
    const double dampening = saturation * (1 - lengthPenalty + lengthPenalty * part);
    double score = 0;
    double covered = 0;
    for (std::size_t at = 0; at < matches_.size(); ++at) {
      const std::size_t phrase = matches_[at].phrase;
      const double frequency = frequencies_.at(at);
      const double weight = query_.weights[phrase];
      covered += weight;
      score += weight * frequency * (saturation + 1) / (frequency + dampening);
      if (following_.at(phrase)) {
        score += phraseWeight * std::min(weight, query_.weights[phrase - 1]);
      }
    }
    const double coverage = covered / query_.allWeights;
    return score * (1 - coverageShare + coverageShare * coverage);
  }

 private:
  struct Instance {
    Postings::Place place;
    std::size_t phrase;
  };

  [[nodiscard]] const std::vector<Postings::Place>& placesOf(const Match& match) const {
    return query_.phrases[match.phrase].postings->places;
  }

  /// Notes the phrases that come behind the one before them as in the prompt.
  void follow() {
    std::vector<Instance> instances;
    for (const Match& match : matches_) {
      for (std::size_t place = match.begin; place < match.end; ++place) {
        instances.push_back({.place = placesOf(match)[place], .phrase = match.phrase});
      }
    }
    std::sort(instances.begin(), instances.end(), [](const Instance& one, const Instance& other) {
      return std::tie(one.place.column, one.place.offset, one.phrase) <
             std::tie(other.place.column, other.place.offset, other.phrase);
    });
    for (std::size_t at = 1; at < instances.size(); ++at) {
      if (isBehind(instances[at - 1], instances[at])) following_.at(instances[at].phrase) = true;
    }
  }

  [[nodiscard]] bool isBehind(const Instance& before, const Instance& now) const {
    constexpr int near = 2;  // a stop word may stand between them
    return now.phrase == before.phrase + 1 && now.place.column == before.place.column &&
           now.place.offset - before.place.offset <= near && query_.phrases[now.phrase].follows;
  }

  /// The card has a neighbour of the phrase beside it.
  [[nodiscard]] bool isInRun(std::size_t phrase) const {
    const std::size_t next = phrase + 1;
    return following_.at(phrase) || (next < query_.phrases.size() && following_.at(next));
  }

  const Query& query_;
  std::span<const Match> matches_;
  std::array<double, Ranking::mostWords> frequencies_{};  ///< of the matches
  std::array<bool, Ranking::mostWords> following_{};      ///< by phrase
};

/// A card whose length is not known yet.
struct Candidate {
  std::int64_t card;
  double most;        ///< its score, were it the shortest of all
  std::size_t begin;  ///< among the matches of all candidates
  std::size_t end;

  friend bool operator<(const Candidate& one, const Candidate& other) {
    return one.most < other.most;
  }
};

struct Candidates {
  std::vector<Candidate> heap;  ///< the one that may be best on top
  std::vector<Match> matches;

  [[nodiscard]] std::span<const Match> matchesOf(const Candidate& one) const {
    return std::span(matches).subspan(one.begin, one.end - one.begin);
  }
};

Candidates candidatesFor(const Query& query) {
  Candidates all;
  for (Walk walk(query.phrases); walk.step();) {
    const CardMatches matches(query, walk.matches());
    if (!matches.sayEnough()) continue;
    const std::size_t begin = all.matches.size();
    all.matches.insert(all.matches.end(), walk.matches().begin(), walk.matches().end());
    all.heap.push_back(
        {.card = walk.card(), .most = matches.score(0), .begin = begin, .end = all.matches.size()});
  }
  std::make_heap(all.heap.begin(), all.heap.end());
  return all;
}

/// The scores that are kept so far.
class Best {
 public:
  explicit Best(std::size_t limit) : limit_(limit) {}

  void take(double score) {
    best_ = std::max(best_, score);
    kept_.push(score);
    if (kept_.size() > limit_) kept_.pop();
  }

  /// What a score must reach to be kept.
  [[nodiscard]] double least() const {
    const double last = kept_.size() == limit_ ? kept_.top() : 0;
    return std::max(last, best_ * Ranking::leastPartOfBest);
  }

 private:
  std::size_t limit_;
  double best_ = 0;
  std::priority_queue<double, std::vector<double>, std::greater<>> kept_;  ///< the lowest on top
};

}  // namespace

std::optional<std::vector<Scored>> of(const std::vector<Phrase>& phrases, std::size_t unknown,
                                      PhraseReader& reader, std::size_t limit) {
  const Query query(phrases, unknown, reader.totals());
  Best best(limit);
  std::vector<Scored> all;
  Candidates candidates = candidatesFor(query);
  std::vector<Candidate>& left = candidates.heap;
  // To know how long a card is takes time, so that is not asked when it cannot matter.
  while (!left.empty() && left.front().most >= best.least()) {
    std::pop_heap(left.begin(), left.end());
    const Candidate& one = left.back();
    const auto length = reader.lengthOf(one.card);
    if (!length) return std::nullopt;
    const double score = CardMatches(query, candidates.matchesOf(one)).score(*length);
    all.push_back({.id = one.card, .score = score});
    best.take(score);
    left.pop_back();
  }
  const double least = best.least();
  std::erase_if(all, [least](const Scored& one) { return one.score < least; });
  return all;
}

}  // namespace quillstead::server::CardScores
