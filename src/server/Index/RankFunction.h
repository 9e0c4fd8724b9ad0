#pragma once

#include "server/Index/Database.h"
#include "support/Text/Character.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace quillstead::server {

/// The score of a card for a prompt, as a function of the full-text index: BM25, plus more when
/// words follow each other as in the prompt, and when much of the prompt is in the card.
class RankFunction {
 public:
  /// One phrase of the search, in the order of its expression.
  struct Phrase {
    std::int64_t cards;         ///< that have it
    double says;                ///< as a search term's
    Text::PairedScript script;  ///< as a search term's
    bool follows;               ///< it directly follows the phrase before it in the prompt
  };

  /// `unknown`: how many words of the prompt no card has.
  RankFunction(std::vector<Phrase> phrases, std::size_t unknown)
      : phrases_(std::move(phrases)), unknown_(unknown) {}

  /// Registers the function with a database; false on failure.
  static bool install(Database& database);

  /// Binds this object as the function's parameter: "cardScore(cards, ?)". Better cards have a
  /// higher score. It is 0 for a card whose words weigh too little, or that is far worse than the
  /// best so far. Use an object for one statement only.
  void bindTo(Statement& statement, int parameter);

 private:
  friend struct RankFunctionCall;

  static constexpr std::size_t scripts = static_cast<std::size_t>(Text::PairedScript::alphabet) + 1;

  std::vector<Phrase> phrases_;
  std::size_t unknown_;

  // Known from the first card on.
  std::vector<double> weights_;                  ///< of the phrases: how rare each is
  std::array<double, scripts> scriptWeights_{};  ///< of the phrases of each
  double allWeights_ = 0;                        ///< of the prompt's words, unknown ones included
  double averageLength_ = 0;                     ///< words of a card
  double best_ = 0;                              ///< score so far
};

}  // namespace quillstead::server
