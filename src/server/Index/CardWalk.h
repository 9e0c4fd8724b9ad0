#pragma once

#include "server/Index/PhraseReader.h"
#include "support/Text/Character.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace quillstead::server::CardScores {

/// A term of the prompt, as the index knows it.
struct Phrase {
  double cards;               ///< that have it, or as many as were counted
  double says;                ///< as a search term's
  Text::PairedScript script;  ///< as a search term's
  bool follows;               ///< the phrase before it comes just before it in the prompt
  const Postings* postings;
};

/// What a card has of one phrase.
struct Match {
  std::size_t phrase;
  std::size_t begin;  ///< among the phrase's places
  std::size_t end;
};

/// Gives the cards that have any of the leading phrases, in the order of their rows, each with what
/// it has of all phrases.
class Walk {
 public:
  /// `leading`: by phrase. Both must outlive the walk.
  Walk(const std::vector<Phrase>& phrases, const std::vector<bool>& leading);

  /// False behind the last card.
  bool step();

  [[nodiscard]] std::int64_t card() const { return card_; }

  /// In the order of their phrases.
  [[nodiscard]] const std::vector<Match>& matches() const { return matches_; }

 private:
  static constexpr std::int64_t none = std::numeric_limits<std::int64_t>::max();

  [[nodiscard]] std::int64_t row(std::size_t phrase) const;
  bool skipTo(std::size_t phrase);

  const std::vector<Phrase>& phrases_;
  const std::vector<bool>& leading_;
  std::vector<std::size_t> next_;   ///< for each phrase, the first row that was not given
  std::vector<std::int64_t> rows_;  ///< these rows of the leading ones
  std::int64_t card_ = 0;
  std::vector<Match> matches_;
};

}  // namespace quillstead::server::CardScores
