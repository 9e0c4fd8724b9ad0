#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace quillstead::cli {

/// Counts durations, so that their exact quantiles are known. Memory grows with the number of
/// different durations, not with their number.
class Quantiles {
 public:
  /// `milliseconds`: not negative.
  void add(std::int64_t milliseconds);

  [[nodiscard]] std::int64_t count() const { return count_; }

  /// The nearest-rank percentile, for `percent` from 1 to 100; 0 when there are no durations.
  [[nodiscard]] std::int64_t percentile(std::int64_t percent) const;

  [[nodiscard]] std::int64_t longest() const { return longest_; }

  /// How many are at least `from` and less than `to`.
  [[nodiscard]] std::int64_t countBetween(std::int64_t from, std::int64_t to) const;

 private:
  /// Calls `visit(duration, how often)` from the shortest on, until it returns false.
  template <typename Visit>
  void visitInOrder(Visit visit) const;

  std::vector<std::int64_t> short_;  ///< by duration
  std::map<std::int64_t, std::int64_t>
      long_;  ///< durations longer than any run of the hook should be
  std::int64_t count_ = 0;
  std::int64_t longest_ = 0;
};

}  // namespace quillstead::cli
