#pragma once

#include <poll.h>

#include <chrono>
#include <optional>
#include <span>

namespace quillstead::OS {

/// Waits until a descriptor has an event, a signal handler ran, or the time is over (no limit when
/// absent), never ending before it by rounding, and fills in `revents`, all of them zero unless a
/// descriptor has an event. Entries with a negative descriptor are passed over.
void waitForEvents(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost);

}  // namespace quillstead::OS
