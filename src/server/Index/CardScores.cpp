#include "server/Index/CardScores.h"

#include "server/Index/Ranking.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numeric>
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

/// The weight of a word: the fewer cards have it, the more it weighs (BM25's idf).
double rarity(double cards, double having) {
  constexpr double half = 0.5;
  return std::log1p((cards - having + half) / (having + half));
}

/// The share of the weight of the prompt's terms in a script that a card must have for them to
/// count.
double leastShare(PairedScript script) {
  if (script == PairedScript::hangul) return Ranking::leastPairsOfHangul;
  return script == PairedScript::alphabet ? Ranking::leastRunsOfAlphabet : 0;
}

std::size_t placeOf(PairedScript script) { return static_cast<std::size_t>(script); }

double weightOf(const Postings::Place& place) {
  return columnWeights.at(static_cast<std::size_t>(place.column));
}

/// What a phrase adds to a card's score. `dampening`: depends on the card's length.
double pointsFor(double weight, double frequency, double dampening) {
  return weight * frequency * (Ranking::saturation + 1) / (frequency + dampening);
}

/// `part`: the card's length over the average length.
double dampeningFor(double part) {
  using namespace Ranking;
  return saturation * (1 - lengthPenalty + lengthPenalty * part);
}

/// What a score needs to know about the prompt.
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

  /// The least score of a card worth showing, as a part of the best score.
  [[nodiscard]] double leastPart() const {
    const double all = std::accumulate(scriptWeights.begin(), scriptWeights.end(), 0.0);
    const double hangul = scriptWeights.at(placeOf(PairedScript::hangul));
    const double alphabet = scriptWeights.at(placeOf(PairedScript::alphabet));
    if (hangul + alphabet <= all / 2) return Ranking::leastPartOfBest;
    return alphabet > hangul ? Ranking::leastPartOfBestAlphabet : Ranking::leastPartOfBestHangul;
  }

  /// `covered`: the weight of the phrases that a card has.
  [[nodiscard]] double partOf(double covered) const {
    using Ranking::coverageShare;
    return 1 - coverageShare + coverageShare * covered / allWeights;
  }

  /// Added when a card has a phrase just behind the one before it in the prompt.
  [[nodiscard]] double pointsForOrder(std::size_t phrase) const {
    return Ranking::phraseWeight * std::min(weights[phrase], weights[phrase - 1]);
  }
};

/// How often a card has a phrase, by the weights of the columns.
double frequencyOf(const Query& query, const Match& match) {
  const std::vector<Postings::Place>& places = query.phrases[match.phrase].postings->places;
  double frequency = 0;
  for (std::size_t place = match.begin; place < match.end; ++place) {
    frequency += weightOf(places[place]);
  }
  return frequency;
}

/// An upper bound of a card's score: the score if the card were very short and its phrases in the
/// prompt's order. 0 when its phrases say too little. Much cheaper than the score itself.
double mostFor(const Query& query, std::span<const Match> matches) {
  const double dampening = dampeningFor(0);
  double says = 0;
  double score = 0;
  double covered = 0;
  for (std::size_t at = 0; at < matches.size(); ++at) {
    const std::size_t phrase = matches[at].phrase;
    says += query.phrases[phrase].says;
    covered += query.weights[phrase];
    score += pointsFor(query.weights[phrase], frequencyOf(query, matches[at]), dampening);
    const bool mayFollow = at > 0 && matches[at - 1].phrase + 1 == phrase;
    if (mayFollow) score += query.pointsForOrder(phrase);
  }
  return says >= Ranking::enough ? score * query.partOf(covered) : 0;
}

/// What a score needs to know about one card.
class CardMatches {
 public:
  CardMatches(const Query& query, std::span<const Match> matches)
      : query_(query), matches_(matches) {
    bool mayFollow = false;
    for (std::size_t at = 0; at < matches_.size(); ++at) {
      mayFollow = mayFollow || (at > 0 && matches_[at - 1].phrase + 1 == matches_[at].phrase);
      frequencies_.at(at) = frequencyOf(query, matches_[at]);
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
    const double dampening = dampeningFor(length / query_.averageLength);
    double score = 0;
    double covered = 0;
    for (std::size_t at = 0; at < matches_.size(); ++at) {
      const std::size_t phrase = matches_[at].phrase;
      covered += query_.weights[phrase];
      score += pointsFor(query_.weights[phrase], frequencies_.at(at), dampening);
      if (following_.at(phrase)) score += query_.pointsForOrder(phrase);
    }
    return score * query_.partOf(covered);
  }

 private:
  struct Instance {
    Postings::Place place;
    std::size_t phrase;
  };

  [[nodiscard]] const std::vector<Postings::Place>& placesOf(const Match& match) const {
    return query_.phrases[match.phrase].postings->places;
  }

  /// Finds the phrases that come behind the one before them, as in the prompt.
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

  /// True when the phrase stands beside a neighbour from the prompt in the card, too.
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
  double most;        ///< the upper bound of its score
  std::size_t begin;  ///< among the matches of all candidates
  std::size_t end;

  friend bool operator<(const Candidate& one, const Candidate& other) {
    return one.most < other.most;
  }
};

struct Candidates {
  std::vector<Candidate> heap;  ///< the highest bound on top
  std::vector<Match> matches;

  [[nodiscard]] std::span<const Match> matchesOf(const Candidate& one) const {
    return std::span(matches).subspan(one.begin, one.end - one.begin);
  }
};

Candidates candidatesFor(const Query& query, const std::vector<bool>& leading) {
  Candidates all;
  for (Walk walk(query.phrases, leading); walk.step();) {
    const double most = mostFor(query, walk.matches());
    if (most <= 0) continue;
    const std::size_t begin = all.matches.size();
    all.matches.insert(all.matches.end(), walk.matches().begin(), walk.matches().end());
    all.heap.push_back(
        {.card = walk.card(), .most = most, .begin = begin, .end = all.matches.size()});
  }
  std::make_heap(all.heap.begin(), all.heap.end());
  return all;
}

/// The best scores so far.
class Best {
 public:
  Best(std::size_t limit, double leastPart) : limit_(limit), leastPart_(leastPart) {}

  void take(double score) {
    best_ = std::max(best_, score);
    kept_.push(score);
    if (kept_.size() > limit_) kept_.pop();
  }

  /// The least score that is kept.
  [[nodiscard]] double least() const {
    const double last = kept_.size() == limit_ ? kept_.top() : 0;
    return std::max(last, best_ * leastPart_);
  }

 private:
  std::size_t limit_;
  double leastPart_;
  double best_ = 0;
  std::priority_queue<double, std::vector<double>, std::greater<>> kept_;  ///< the lowest on top
};

/// An upper bound of the score of a card without any leading phrase; 0 when all are leading.
double mostWithout(const std::vector<bool>& leading, const Query& query) {
  double score = 0;
  double covered = 0;
  for (std::size_t phrase = 0; phrase < leading.size(); ++phrase) {
    if (leading[phrase]) continue;
    covered += query.weights[phrase];
    score += query.weights[phrase] * (Ranking::saturation + 1);
    if (phrase > 0 && !leading[phrase - 1]) score += query.pointsForOrder(phrase);
  }
  return score * query.partOf(covered);
}

/// For each phrase, whether it leads: only cards with a leading phrase are looked at first. The
/// most frequent phrases do not lead, as far as a card with only these would be left out even if
/// the best card had just the rarest phrase, once.
std::vector<bool> leadingOf(const Query& query) {
  std::vector<std::size_t> rarestFirst(query.phrases.size());
  std::iota(rarestFirst.begin(), rarestFirst.end(), 0U);
  std::sort(rarestFirst.begin(), rarestFirst.end(), [&query](std::size_t one, std::size_t other) {
    return query.weights[one] > query.weights[other];
  });
  std::vector<bool> leading(query.phrases.size(), true);
  if (leading.empty()) return leading;
  const double rarest = query.weights[rarestFirst.front()];
  const double least = query.leastPart() * rarest * query.partOf(rarest);
  for (; !rarestFirst.empty(); rarestFirst.pop_back()) {
    leading[rarestFirst.back()] = false;
    if (mostWithout(leading, query) < least) continue;
    leading[rarestFirst.back()] = true;
    break;
  }
  return leading;
}

/// Scores the cards with a leading phrase, except those that cannot be worth showing. Adds the
/// scores to `best`. Absent when the database failed.
std::optional<std::vector<Scored>> scored(const Query& query, const std::vector<bool>& leading,
                                          PhraseReader& reader, Best& best) {
  std::vector<Scored> all;
  Candidates candidates = candidatesFor(query, leading);
  std::vector<Candidate>& left = candidates.heap;
  while (!left.empty() && left.front().most >= best.least()) {
    std::pop_heap(left.begin(), left.end());
    const Candidate one = left.back();
    left.pop_back();
    const CardMatches matches(query, candidates.matchesOf(one));
    // Reading a card's length takes time, so it is only read when it can matter.
    if (!matches.sayEnough() || matches.score(0) < best.least()) continue;
    const auto length = reader.lengthOf(one.card);
    if (!length) return std::nullopt;
    const double score = matches.score(*length);
    all.push_back({.id = one.card, .score = score});
    best.take(score);
  }
  return all;
}

}  // namespace

std::optional<std::vector<Scored>> of(const std::vector<Phrase>& phrases, std::size_t unknown,
                                      PhraseReader& reader, std::size_t limit) {
  const Query query(phrases, unknown, reader.totals());
  Best best(limit, query.leastPart());
  const std::vector<bool> leading = leadingOf(query);
  auto all = scored(query, leading, reader, best);
  if (all && mostWithout(leading, query) >= best.least() && mostWithout(leading, query) > 0) {
    best = Best(limit, query.leastPart());
    all = scored(query, std::vector<bool>(phrases.size(), true), reader, best);
  }
  if (!all) return std::nullopt;
  const double least = best.least();
  std::erase_if(*all, [least](const Scored& one) { return one.score < least; });
  return all;
}

}  // namespace quillstead::server::CardScores
