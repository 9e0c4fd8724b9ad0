#include "hook/StackOverflowProbe.h"

namespace quillstead::hook::StackOverflowProbe {

// No base case, on purpose. The words are volatile and used after the call, so that the compiler
// keeps each frame and does not make a loop of the recursion.
#pragma GCC diagnostic push
#if defined(__clang__) || __GNUC__ >= 12
#pragma GCC diagnostic ignored "-Winfinite-recursion"
#endif
std::int64_t recurse(std::int64_t depth) {
  constexpr std::size_t words = 512;
  volatile std::int64_t scratch[words];
  scratch[0] = depth;
  scratch[words - 1] = depth;
  const std::int64_t deeper = recurse(depth + 1);
  return deeper + scratch[0] + scratch[words - 1];
}
#pragma GCC diagnostic pop

void recurseIfAsked(const OS::Environment& environment) {
  if (environment.value("QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS") == "1") recurse(0);
}

}  // namespace quillstead::hook::StackOverflowProbe
