#pragma once

#include "cli/Telemetry/LogLine.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
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

/// Statistics of the runs at one slot.
struct SlotFigures {
  std::int64_t withRules = 0;  ///< runs that received rules
  std::int64_t withCards = 0;  ///< runs that received cards
  std::int64_t trimmed = 0;    ///< runs in which cards were cut for the budget
  Quantiles whole;             ///< one duration for each run
  std::vector<std::pair<std::string, Quantiles>> stages;  ///< in order of appearance
  std::map<std::string, std::int64_t> misses;             ///< "rules=MISS:timeout", and how often

  [[nodiscard]] std::int64_t prompts() const { return whole.count(); }
};

/// Statistics of a log. Memory grows with the variety in the log, not with its size.
struct LogFigures {
  /// One day, in UTC.
  struct Day {
    Quantiles whole;          ///< longer durations count as `longestOfDay`
    std::int64_t missed = 0;  ///< runs with at least one miss
  };
  using Days = std::map<std::chrono::sys_days, Day>;

  static constexpr std::int64_t longestOfDay = 9'999;  ///< milliseconds
  static constexpr std::size_t mostDays = 1'000;       ///< earlier days are dropped

  std::int64_t lines = 0;    ///< of all kinds
  std::int64_t foreign = 0;  ///< incomplete, or not the hook's
  std::int64_t older = 0;    ///< from before the requested time
  std::optional<LogLine::Time> first;
  std::optional<LogLine::Time> last;
  Quantiles whole;                           ///< of all runs
  std::map<std::string, SlotFigures> slots;  ///< "all": runs without a slot
  Days days;

  /// Counts a line that the hook wrote.
  void add(const LogLine& line);

  /// The slots with runs, in the order in which they are shown.
  [[nodiscard]] std::vector<std::pair<std::string_view, const SlotFigures*>> inOrder() const;

  /// The misses of all slots, the most frequent first.
  [[nodiscard]] std::vector<std::pair<std::string, std::int64_t>> misses() const;
};

}  // namespace quillstead::cli
