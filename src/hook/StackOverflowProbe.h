#pragma once

#include "support/OS/Environment.h"

#include <cstdint>

/// Overflows the stack on purpose, so that tests can check from outside how the belt handles it.
namespace quillstead::hook::StackOverflowProbe {

/// Recurses until the stack overflows. Call it with 0.
std::int64_t recurse(std::int64_t depth);

/// Recurses when QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS is exactly "1".
void recurseIfAsked(const OS::Environment& environment);

}  // namespace quillstead::hook::StackOverflowProbe
