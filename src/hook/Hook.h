#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "hook/Harness/SlotFlag.h"
#include "support/OS/Environment.h"

#include <cstdint>
#include <optional>
#include <span>

/// One run of the hook: from the command line to the one answer. Every operation returns the exit
/// status, which is always 0: whatever goes wrong, the harness goes on.
namespace quillstead::Hook {

/// Chooses the harness and the slot and hands the run on; refuses what it does not know.
/// `arguments`: the command line without the program's path.
std::int32_t run(std::span<char* const> arguments, const OS::Environment& environment);

/// Answers a prompt: reads the payload, runs the lanes, prints the fitted texts in the harness's
/// envelope, and logs one telemetry line. Takes at most 2.5 seconds once the payload is there.
std::int32_t serve(const HarnessAdapter& adapter, std::optional<HookSlot> slot,
                   const OS::Environment& environment);

/// Prints the adapter's silence, or nothing when it has none.
std::int32_t silence(const HarnessAdapter& adapter);

}  // namespace quillstead::Hook
