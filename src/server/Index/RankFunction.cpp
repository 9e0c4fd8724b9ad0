#include "server/Index/RankFunction.h"

#include "server/Index/Ranking.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace quillstead::server {

namespace {

using Text::PairedScript;

constexpr const char* functionName = "cardScore";
constexpr const char* pointerType = "quillstead-rank";
constexpr std::array<double, 3> columnWeights{Ranking::titleWeight, Ranking::tagWeight,
                                              Ranking::bodyWeight};

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

/// FTS5's own interface, absent when this SQLite has none.
fts5_api* interfaceOf(Database& database) {
  fts5_api* api = nullptr;
  Statement read = database.prepare("SELECT fts5(?)");
  read.bind(1, static_cast<void*>(&api), "fts5_api_ptr").step();
  return api;
}

}  // namespace

/// One call of the function, for one card.
struct RankFunctionCall {
  const Fts5ExtensionApi& api;
  Fts5Context* context;
  RankFunction& query;

  struct Instance {
    int phrase = 0;
    int column = 0;
    int offset = 0;
  };

  static void run(const Fts5ExtensionApi* api, Fts5Context* context, sqlite3_context* result,
                  int count, sqlite3_value** values) {
    auto* const query =
        count == 1 ? static_cast<RankFunction*>(sqlite3_value_pointer(values[0], pointerType))
                   : nullptr;
    if (!query) {
      sqlite3_result_error(result, "cardScore needs its query", -1);
      return;
    }
    RankFunctionCall call{*api, context, *query};
    if (query->weights_.empty()) call.learn();
    sqlite3_result_double(result, call.score());
  }

  /// What does not depend on the card.
  void learn() const {
    sqlite3_int64 cards = 0;
    sqlite3_int64 words = 0;
    api.xRowCount(context, &cards);
    api.xColumnTotalSize(context, -1, &words);
    const auto all = static_cast<double>(std::max<sqlite3_int64>(cards, 1));
    query.averageLength_ = std::max(static_cast<double>(words) / all, 1.0);
    query.allWeights_ = static_cast<double>(query.unknown_) * rarity(all, 0);
    for (const RankFunction::Phrase& phrase : query.phrases_) {
      query.weights_.push_back(rarity(all, static_cast<double>(phrase.cards)));
      query.scriptWeights_.at(placeOf(phrase.script)) += query.weights_.back();
    }
    for (const double weight : query.scriptWeights_) query.allWeights_ += weight;
  }

  /// What the card has of each phrase.
  struct Matches {
    std::array<double, Ranking::mostWords> frequencies{};
    std::array<bool, Ranking::mostWords> following{};
  };

  [[nodiscard]] double score() const {
    Matches matches;
    Instance before;
    before.phrase = -1;
    int instances = 0;
    api.xInstCount(context, &instances);
    for (int at = 0; at < instances; ++at) {
      Instance now;
      if (api.xInst(context, at, &now.phrase, &now.column, &now.offset) != SQLITE_OK) continue;
      const auto phrase = static_cast<std::size_t>(now.phrase);
      matches.frequencies.at(phrase) += columnWeights.at(static_cast<std::size_t>(now.column));
      if (follow(before, now)) matches.following.at(phrase) = true;
      before = now;
    }
    return saysEnough(matches) ? scoreOf(matches) : 0;
  }

  [[nodiscard]] bool follow(const Instance& before, const Instance& now) const {
    constexpr int near = 2;  // a stop word may stand between them
    return before.phrase >= 0 && now.phrase == before.phrase + 1 && now.column == before.column &&
           now.offset - before.offset <= near &&
           query.phrases_[static_cast<std::size_t>(now.phrase)].follows;
  }

  [[nodiscard]] bool saysEnough(const Matches& matches) const {
    std::array<double, RankFunction::scripts> says{};
    std::array<double, RankFunction::scripts> weights{};
    for (std::size_t at = 0; at < query.phrases_.size(); ++at) {
      if (matches.frequencies.at(at) == 0) continue;
      const PairedScript script = query.phrases_[at].script;
      says.at(placeOf(script)) += query.phrases_[at].says;
      const bool counts = script != PairedScript::alphabet || isInRun(matches, at);
      if (counts) weights.at(placeOf(script)) += query.weights_[at];
    }
    double all = 0;
    for (std::size_t at = 0; at < says.size(); ++at) {
      const double least = query.scriptWeights_.at(at) * leastShare(PairedScript(at));
      if (weights.at(at) >= least) all += says.at(at);
    }
    return all >= Ranking::enough;
  }

  /// The card has a neighbour of the phrase beside it.
  [[nodiscard]] bool isInRun(const Matches& matches, std::size_t phrase) const {
    const std::size_t next = phrase + 1;
    return matches.following.at(phrase) ||
           (next < query.phrases_.size() && matches.following.at(next));
  }

  /// To know how long the card is takes most of the time, so that is not asked for a card that
  /// would be left out if it were the shortest of all.
  [[nodiscard]] double scoreOf(const Matches& matches) const {
    if (scoreOf(matches, 0) < query.best_ * Ranking::leastPartOfBest) return 0;
    int words = 0;
    api.xColumnSize(context, -1, &words);
    const double score = scoreOf(matches, static_cast<double>(words) / query.averageLength_);
    query.best_ = std::max(query.best_, score);
    return score;
  }

  /// `length`: of the card, as a part of the average.
  [[nodiscard]] double scoreOf(const Matches& matches, double length) const {
    using namespace Ranking;
    const double dampening = saturation * (1 - lengthPenalty + lengthPenalty * length);
    double score = 0;
    double covered = 0;
    for (std::size_t at = 0; at < query.phrases_.size(); ++at) {
      const double frequency = matches.frequencies.at(at);
      if (frequency == 0) continue;
      const double weight = query.weights_[at];
      covered += weight;
      score += weight * frequency * (saturation + 1) / (frequency + dampening);
      if (matches.following.at(at)) {
        score += phraseWeight * std::min(weight, query.weights_[at - 1]);
      }
    }
    const double coverage = covered / query.allWeights_;
    return score * (1 - coverageShare + coverageShare * coverage);
  }
};

bool RankFunction::install(Database& database) {
  fts5_api* const api = interfaceOf(database);
  return api && api->xCreateFunction(api, functionName, nullptr, &RankFunctionCall::run, nullptr) ==
                    SQLITE_OK;
}

void RankFunction::bindTo(Statement& statement, int parameter) {
  statement.bind(parameter, this, pointerType);
}

}  // namespace quillstead::server
