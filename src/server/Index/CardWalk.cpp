#include "server/Index/CardWalk.h"

#include <algorithm>

namespace quillstead::server::CardScores {

Walk::Walk(const std::vector<Phrase>& phrases, const std::vector<bool>& leading)
    : phrases_(phrases), leading_(leading), next_(phrases.size()) {
  for (std::size_t phrase = 0; phrase < phrases.size(); ++phrase) {
    rows_.push_back(leading_[phrase] ? row(phrase) : none);
  }
}

bool Walk::step() {
  matches_.clear();
  card_ = none;
  for (const std::int64_t row : rows_) card_ = std::min(card_, row);
  if (card_ == none) return false;
  for (std::size_t phrase = 0; phrase < rows_.size(); ++phrase) {
    if (leading_[phrase] ? rows_[phrase] != card_ : !skipTo(phrase)) continue;
    const std::vector<std::size_t>& ends = phrases_[phrase].postings->ends;
    const std::size_t at = next_[phrase]++;
    matches_.push_back({.phrase = phrase, .begin = at == 0 ? 0 : ends[at - 1], .end = ends[at]});
    if (leading_[phrase]) rows_[phrase] = row(phrase);
  }
  return true;
}

/// The phrase's next row; `none` behind the last.
std::int64_t Walk::row(std::size_t phrase) const {
  const std::vector<std::int64_t>& rows = phrases_[phrase].postings->rows;
  return next_[phrase] < rows.size() ? rows[next_[phrase]] : none;
}

/// Moves to the phrase's first row at or behind the card; true when it is the card's own.
bool Walk::skipTo(std::size_t phrase) {
  const std::vector<std::int64_t>& rows = phrases_[phrase].postings->rows;
  std::size_t begin = next_[phrase];
  std::size_t width = 1;  // the row is likely to be near
  while (begin + width < rows.size() && rows[begin + width] < card_) {
    begin += width;
    width *= 2;
  }
  const auto at = [&rows](std::size_t place) {
    return rows.begin() + static_cast<std::ptrdiff_t>(std::min(place, rows.size()));
  };
  next_[phrase] = static_cast<std::size_t>(
      std::lower_bound(at(begin), at(begin + width + 1), card_) - rows.begin());
  return row(phrase) == card_;
}

}  // namespace quillstead::server::CardScores
