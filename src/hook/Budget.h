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

  /// The time that is left; 0 when there is none.
  [[nodiscard]] Seconds leash() const;

  /// Whole milliseconds since the start.
  [[nodiscard]] std::int64_t elapsedMilliseconds() const;
};

}  // namespace quillstead::hook
