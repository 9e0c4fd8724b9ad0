#pragma once

#include "cli/Telemetry/LogLine.h"
#include "cli/Telemetry/Quantiles.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::cli {

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
