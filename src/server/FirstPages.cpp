// A call of the server writes some eighty pages of the heap. The system gives each at its first
// write, which takes longer than all of them at once. So the allocator gets the first forty before
// main. If the system cannot do that, nothing is lost.

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr std::size_t size = 160'000;  // the allocator gives back what is freed from 163,840 on
constexpr int populateWrite = 23;      // MADV_POPULATE_WRITE, which some headers lack

[[gnu::constructor]] void takeFirstPages() {
  auto* const memory = static_cast<std::byte*>(std::malloc(size));
  if (memory == nullptr) return;
  const auto page = static_cast<std::size_t>(getpagesize());
  const std::size_t before = (page - reinterpret_cast<std::uintptr_t>(memory) % page) % page;
  madvise(memory + before, (size - before) / page * page, populateWrite);
  std::free(memory);
}

}  // namespace
