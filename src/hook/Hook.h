#pragma once

#include "hook/Harness/HarnessAdapter.h"
#include "hook/Harness/SlotFlag.h"
#include "support/OS/Environment.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

/// One run of the hook, from the command line to the answer.
namespace quillstead::hook::Hook {

/// Reads the harness and the slot from the command line and starts the run; refuses unknown ones.
/// "--version" or "--help" as the only argument prints that instead. Returns the exit status,
/// always 0. `arguments`: the command line without the program's path.
std::int32_t run(std::span<char* const> arguments, const OS::Environment& environment);

/// Answers a prompt: reads the payload, runs the lanes, prints the texts that fit in the harness's
/// envelope, and writes one line to the log. Takes at most 2.5 seconds after the payload was read.
/// `event` is the harness's name for the event. Returns the exit status, always 0.
std::int32_t serve(const HarnessAdapter& adapter, std::optional<HookSlot> slot,
                   std::string_view event, const OS::Environment& environment);

/// Prints the adapter's silence, if it has one. Returns the exit status, always 0.
std::int32_t silence(const HarnessAdapter& adapter);

}  // namespace quillstead::hook::Hook
