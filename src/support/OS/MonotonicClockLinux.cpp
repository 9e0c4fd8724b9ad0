#include "support/OS/MonotonicClock.h"

namespace quillstead::OS {

clockid_t MonotonicClock::identifier() noexcept { return CLOCK_MONOTONIC; }

}  // namespace quillstead::OS
