#include "support/OS/LargeMemory.h"

#include <algorithm>

namespace quillstead::OS {

void moveToLargeMemory(std::string& bytes, std::size_t size, std::size_t mostSize) {
  constexpr std::size_t growth = 8;
  std::string roomier;
  roomier.reserve(std::min(growth * size, mostSize));
  preferLargePages(roomier.data(), roomier.capacity());
  roomier += bytes;
  bytes = std::move(roomier);
}

}  // namespace quillstead::OS
