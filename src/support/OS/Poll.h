#pragma once

#include <poll.h>

#include <chrono>
#include <optional>
#include <span>

namespace quillstead::OS {

/// Waits until a descriptor has an event, a signal handler ran, or the time is over (no limit when
/// absent), never ending before it by rounding, and fills in `revents`, all of them zero unless a
/// descriptor has an event. Entries with a negative descriptor are passed over.
///
/// When the system refuses to wait (it may, for want of memory), every entry gets the events that
/// it asks for after a millisecond: descriptors that do not block are then looked at in turn.
void waitForEvents(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost);

/// The one call for it that the system has, with `poll`'s result and errno.
int pollOnce(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost);

}  // namespace quillstead::OS
