#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "hook/Harness/SlotFlag.h"
#include "support/OS/Environment.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillstead::hook::Hook {

/// Answers a prompt: reads the payload, runs the lanes, prints the fitted texts in the harness's
/// envelope, and logs one telemetry line. Takes at most 2.5 seconds once the payload is there.
/// `event` is what the harness calls the moment. Returns the exit status, always 0.
std::int32_t serve(const HarnessAdapter& adapter, std::optional<HookSlot> slot,
                   std::string_view event, const OS::Environment& environment);

/// Prints the adapter's silence, or nothing when it has none. Returns the exit status, always 0.
std::int32_t silence(const HarnessAdapter& adapter);

}  // namespace quillstead::hook::Hook
