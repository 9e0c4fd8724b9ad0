#include "support/OS/LargeMemory.h"

namespace quillstead::OS {

void moveToLargeMemory(std::string& bytes, std::size_t size) {
  constexpr std::size_t huge = 64U << 20U;  // sixteen of these are what a small machine may refuse
  const std::size_t growth = size < huge ? 16 : 8;
  std::string roomier;
  roomier.reserve(growth * size);
  preferLargePages(std::as_writable_bytes(std::span(roomier.data(), roomier.capacity())));
  roomier += bytes;
  bytes = std::move(roomier);
}

}  // namespace quillstead::OS
