#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>

namespace quillstead::OS {

/// The system's uptime: nanoseconds that never jump with the wall clock.
struct MonotonicClock {
  using duration = std::chrono::nanoseconds;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<MonotonicClock>;
  static constexpr bool is_steady = true;

  static time_point now() noexcept {
    timespec reading{};
    clock_gettime(identifier(), &reading);
    return time_point(std::chrono::seconds(reading.tv_sec) +
                      std::chrono::nanoseconds(reading.tv_nsec));
  }

 private:
  static clockid_t identifier() noexcept;  ///< what the system calls it
};

}  // namespace quillstead::OS
