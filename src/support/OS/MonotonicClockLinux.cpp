#include "support/OS/MonotonicClock.h"

#include <ctime>

namespace quillstead::OS {

MonotonicClock::time_point MonotonicClock::now() noexcept {
  timespec reading{};
  clock_gettime(CLOCK_MONOTONIC, &reading);
  return time_point(std::chrono::seconds(reading.tv_sec) +
                    std::chrono::nanoseconds(reading.tv_nsec));
}

}  // namespace quillstead::OS
