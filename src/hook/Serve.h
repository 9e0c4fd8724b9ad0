#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "hook/Harness/SlotFlag.h"
#include "support/OS/Environment.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillstead::hook::Hook {

/// Answers a prompt: reads the payload, runs the lanes, prints the texts that fit in the harness's
/// envelope, and writes one line to the log. Takes at most 2.5 seconds after the payload was read.
/// `event` is the harness's name for the event. Returns the exit status, always 0.
std::int32_t serve(const HarnessAdapter& adapter, std::optional<HookSlot> slot,
                   std::string_view event, const OS::Environment& environment);

/// Prints the adapter's silence, if it has one. Returns the exit status, always 0.
std::int32_t silence(const HarnessAdapter& adapter);

}  // namespace quillstead::hook::Hook
