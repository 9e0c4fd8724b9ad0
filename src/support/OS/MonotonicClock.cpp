#include "support/OS/MonotonicClock.h"

namespace quillstead::OS {

MonotonicClock::time_point MonotonicClock::now() noexcept {
  timespec reading{};
  clock_gettime(identifier(), &reading);
  return time_point(std::chrono::seconds(reading.tv_sec) +
                    std::chrono::nanoseconds(reading.tv_nsec));
}

}  // namespace quillstead::OS
