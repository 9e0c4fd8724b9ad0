#pragma once

#include "support/OS/Environment.h"

#include <cstdint>
#include <span>

/// One run of the hook, from the command line to the answer.
namespace quillstead::hook::Hook {

/// Reads the harness and the slot from the command line and starts the run; refuses unknown ones.
/// "--version" or "--help" as the only argument prints that instead. Returns the exit status,
/// always 0. `arguments`: the command line without the program's path.
std::int32_t run(std::span<char* const> arguments, const OS::Environment& environment);

}  // namespace quillstead::hook::Hook
