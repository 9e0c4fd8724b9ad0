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

/// What the runs at one slot came to.
struct SlotFigures {
  std::int64_t withRules = 0;  ///< runs that rules came to
  std::int64_t withCards = 0;  ///< runs that cards came to
  std::int64_t trimmed = 0;    ///< runs in which cards were cut for the budget
  Quantiles whole;             ///< one duration for each run
  std::vector<std::pair<std::string, Quantiles>> stages;  ///< in the order in which they came
  std::map<std::string, std::int64_t> misses;             ///< "rules=MISS:timeout", and how often

  [[nodiscard]] std::int64_t prompts() const { return whole.count(); }
};

/// What a log comes to. It grows with what differs in the log, and not with its size.
struct LogFigures {
  /// One day of the time zone UTC.
  struct Day {
    Quantiles whole;          ///< what took longer than `longestOfDay` counts as that
    std::int64_t missed = 0;  ///< runs with at least one miss
  };
  using Days = std::map<std::chrono::sys_days, Day>;

  static constexpr std::int64_t longestOfDay = 9'999;  ///< milliseconds
  static constexpr std::size_t mostDays = 1'000;  ///< the days before the last ones are dropped

  std::int64_t lines = 0;    ///< all there are
  std::int64_t foreign = 0;  ///< those the hook did not write, or not to their end
  std::int64_t older = 0;    ///< those from before the time that was asked for
  std::optional<LogLine::Time> first;
  std::optional<LogLine::Time> last;
  Quantiles whole;                           ///< of all runs
  std::map<std::string, SlotFigures> slots;  ///< "all" being the runs without a slot
  Days days;

  /// Counts a line that the hook wrote.
  void add(const LogLine& line);

  /// The slots in the order in which they are shown, those without a run left out.
  [[nodiscard]] std::vector<std::pair<std::string_view, const SlotFigures*>> inOrder() const;

  /// The misses of all slots together, the most frequent first.
  [[nodiscard]] std::vector<std::pair<std::string, std::int64_t>> misses() const;
};

}  // namespace quillstead::cli
