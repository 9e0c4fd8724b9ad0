#pragma once

#include <cstddef>
#include <span>
#include <string>

/// Memory for texts of many megabytes: what costs there is moving them as they grow, and touching
/// every page for the first time.
namespace quillstead::OS {

/// Tells the system that the memory will be written to from its start on, so that it may hand it
/// out in large pieces. Does nothing for less than some megabytes, or where the system has no such
/// thing.
void preferLargePages(std::span<std::byte> memory);

/// Moves `bytes` to where they can grow to eight times `size`: memory that is never written to
/// costs nothing.
void moveToLargeMemory(std::string& bytes, std::size_t size);

/// Makes room for `count` more bytes at the end of `bytes`. Less than some kilobytes is left to the
/// text itself.
inline void makeRoom(std::string& bytes, std::size_t count) {
  constexpr std::size_t small = 65'536;
  const std::size_t size = bytes.size() + count;
  if (size > small && size > bytes.capacity()) moveToLargeMemory(bytes, size);
}

}  // namespace quillstead::OS
