#include "support/OS/LargeMemory.h"

#include <sys/mman.h>

#include <cstdint>

namespace quillstead::OS {

void preferLargePages(std::span<std::byte> memory) {
  constexpr std::size_t largePage = 2 << 20U;
  if (memory.size() < 2 * largePage) return;
  const std::size_t beyond = reinterpret_cast<std::uintptr_t>(memory.data()) % largePage;
  const std::size_t before = beyond == 0 ? 0 : largePage - beyond;
  // If this fails, the memory has small pages.
  memory = memory.subspan(before);
  (void)madvise(memory.data(), memory.size() / largePage * largePage, MADV_HUGEPAGE);
}

}  // namespace quillstead::OS
