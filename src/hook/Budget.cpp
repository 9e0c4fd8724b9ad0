#include "hook/Budget.h"

#include <algorithm>

namespace quillstead::hook {

namespace {

Seconds elapsedSince(OS::MonotonicClock::time_point start) {
  return OS::MonotonicClock::now() - start;
}

}  // namespace

Seconds Deadline::leash() const {
  return std::max(Seconds::zero(), allowance - elapsedSince(start));
}

std::int64_t Deadline::elapsedMilliseconds() const {
  return static_cast<std::int64_t>(elapsedSince(start).count() * 1000.0);
}

}  // namespace quillstead::hook
