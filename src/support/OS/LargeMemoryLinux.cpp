#include "support/OS/LargeMemory.h"

#include <sys/mman.h>

#include <cstdint>

namespace quillstead::OS {

void preferLargePages(char* start, std::size_t size) {
  constexpr std::size_t largePage = 2 << 20U;
  if (size < 2 * largePage) return;
  const std::size_t beyond = reinterpret_cast<std::uintptr_t>(start) % largePage;
  const std::size_t before = beyond == 0 ? 0 : largePage - beyond;
  // Where it is refused, the memory comes in small pages.
  (void)madvise(start + before, (size - before) / largePage * largePage, MADV_HUGEPAGE);
}

}  // namespace quillstead::OS
