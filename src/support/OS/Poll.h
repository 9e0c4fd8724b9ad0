#pragma once

#include <poll.h>

#include <chrono>
#include <optional>
#include <span>

namespace quillstead::OS {

/// Waits until a descriptor has an event, a signal handler ran, or the time is over (absent: no
/// limit; never rounded down). Fills in `revents`; all are zero when no descriptor has an event.
/// Entries with a negative descriptor are skipped.
///
/// If the system cannot wait (it may lack memory), every entry gets the events that it asks for,
/// after a millisecond: the caller then tries its non-blocking descriptors in turn.
void waitForEvents(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost);

/// The system's own call, with the result and errno of `poll`.
int pollOnce(std::span<pollfd> descriptors, std::optional<std::chrono::nanoseconds> atMost);

}  // namespace quillstead::OS
