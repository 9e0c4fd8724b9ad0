#pragma once

#include "support/OS/MonotonicClock.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace quillstead::hook {

using Seconds = std::chrono::duration<double>;

/// The time one run may take, counted from its start.
struct Deadline {
  OS::MonotonicClock::time_point start;
  Seconds allowance;

  /// The time that is left; 0 when there is none.
  [[nodiscard]] Seconds leash() const { return std::max(Seconds::zero(), allowance - elapsed()); }

  /// Whole milliseconds since the start.
  [[nodiscard]] std::int64_t elapsedMilliseconds() const {
    return static_cast<std::int64_t>(elapsed().count() * 1000.0);
  }

 private:
  [[nodiscard]] Seconds elapsed() const { return OS::MonotonicClock::now() - start; }
};

}  // namespace quillstead::hook
