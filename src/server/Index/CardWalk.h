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
  double cards;               ///< how many have it, as far as they were counted
  double says;                ///< as a search term's
  Text::PairedScript script;  ///< as a search term's
  bool follows;               ///< in the prompt it comes just behind the phrase before it
  const Postings* postings;
};

/// The places of one phrase in a card.
struct Match {
  std::size_t phrase;
  std::size_t begin;  ///< among the phrase's places
  std::size_t end;
};

/// Visits the cards that have a leading phrase, in the order of their rows, each with its matches
/// of all phrases.
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
  std::vector<std::size_t> next_;   ///< for each phrase, where its next row is
  std::vector<std::int64_t> rows_;  ///< the next rows of the leading phrases
  std::int64_t card_ = 0;
  std::vector<Match> matches_;
};

}  // namespace quillstead::server::CardScores
