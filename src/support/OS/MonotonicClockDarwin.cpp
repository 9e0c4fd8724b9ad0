#include "support/OS/MonotonicClock.h"

namespace quillstead::OS {

clockid_t MonotonicClock::identifier() noexcept { return CLOCK_UPTIME_RAW; }

}  // namespace quillstead::OS
