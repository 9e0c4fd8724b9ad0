#include "cli/Telemetry/Quantiles.h"

#include <algorithm>
#include <iterator>

namespace quillstead::cli {

namespace {

constexpr std::int64_t mostInTable = 16'384;  ///< milliseconds

/// The most different long durations that are kept; further ones count as the next shorter one.
constexpr std::size_t mostApart = 50'000;

}  // namespace

void Quantiles::add(std::int64_t milliseconds) {
  ++count_;
  longest_ = std::max(longest_, milliseconds);
  if (milliseconds < mostInTable) {
    const auto place = static_cast<std::size_t>(milliseconds);
    if (place >= short_.size()) short_.resize(place + 1);
    ++short_[place];
    return;
  }
  const auto next = long_.upper_bound(milliseconds);
  const bool isFull = long_.size() >= mostApart && next != long_.begin();
  ++long_[isFull ? std::prev(next)->first : milliseconds];
}

template <typename Visit>
void Quantiles::visitInOrder(Visit visit) const {
  for (std::size_t duration = 0; duration < short_.size(); ++duration) {
    if (!visit(static_cast<std::int64_t>(duration), short_[duration])) return;
  }
  for (const auto& [duration, times] : long_) {
    if (!visit(duration, times)) return;
  }
}

std::int64_t Quantiles::percentile(std::int64_t percent) const {
  constexpr std::int64_t whole = 100;
  const std::int64_t rank = (count_ * percent + whole - 1) / whole;
  std::int64_t found = 0;
  std::int64_t before = 0;
  visitInOrder([&](std::int64_t duration, std::int64_t times) {
    if (times > 0) found = duration;
    before += times;
    return before < rank;
  });
  return found;
}

std::int64_t Quantiles::countBetween(std::int64_t from, std::int64_t to) const {
  std::int64_t between = 0;
  visitInOrder([&](std::int64_t duration, std::int64_t times) {
    if (duration >= from && duration < to) between += times;
    return duration < to;
  });
  return between;
}

}  // namespace quillstead::cli
