#pragma once

#include "support/OS/Environment.h"

#include <cstdint>

/// A deliberate endless recursion, so that the belt's handling of a stack overflow can be tried
/// from outside the process.
namespace quillstead::hook::StackOverflowProbe {

/// Runs the stack out; call it with 0. Never returns in practice.
std::int64_t recurse(std::int64_t depth);

/// Recurses when QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS is exactly "1".
void recurseIfAsked(const OS::Environment& environment);

}  // namespace quillstead::hook::StackOverflowProbe
