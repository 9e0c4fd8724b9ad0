#pragma once

#include "support/OS/MonotonicClock.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::hook {

/// How long each stage of a run took, in the order they ended.
class StageClock {
 public:
  struct Stage {
    std::string_view name;
    std::int64_t milliseconds;
  };

  StageClock() { stages_.reserve(usualStages); }
  explicit StageClock(std::vector<Stage> stages) : stages_(std::move(stages)) {}

  /// Runs a stage, records how long it took, and returns its result.
  template <typename Step>
  auto timed(std::string_view name, Step step) {
    const OS::MonotonicClock::time_point start = OS::MonotonicClock::now();
    auto result = step();
    record(name, start);
    return result;
  }

  /// Records a stage that began at `start` and ends now.
  void record(std::string_view name, OS::MonotonicClock::time_point start);

  /// For example "rules 12 cards 30 residual 5". The residual is the total without the stages; it
  /// is negative when the stages add up to more. Absent when there were no stages.
  [[nodiscard]] std::optional<std::string> segment(std::int64_t totalMilliseconds) const;

 private:
  static constexpr std::size_t usualStages = 5;  ///< of a prompt: parse to write

  std::vector<Stage> stages_;
};

}  // namespace quillstead::hook
