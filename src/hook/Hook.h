#pragma once

#include "support/OS/Environment.h"

#include <cstdint>
#include <span>

/// One run of the hook: from the command line to the one answer.
namespace quillstead::hook::Hook {

/// Chooses the harness and the slot and hands the run on; refuses what it does not know.
/// "--version" alone tells the version, so that `quillstead doctor` can ask for it. Returns the
/// exit status, which is always 0: whatever goes wrong, the harness goes on. `arguments`: the
/// command line without the program's path.
std::int32_t run(std::span<char* const> arguments, const OS::Environment& environment);

}  // namespace quillstead::hook::Hook
