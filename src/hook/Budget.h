#pragma once

#include "support/OS/MonotonicClock.h"

#include <chrono>
#include <cstdint>

namespace quillstead::hook {

using Seconds = std::chrono::duration<double>;

/// The time one run may take, counted from its start.
struct Deadline {
  OS::MonotonicClock::time_point start;
  Seconds allowance;

  /// What is left of the allowance; 0 when it is spent.
  [[nodiscard]] Seconds leash() const;

  /// Whole milliseconds since the start.
  [[nodiscard]] std::int64_t elapsedMilliseconds() const;
};

}  // namespace quillstead::hook
