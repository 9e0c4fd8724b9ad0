#pragma once

#include <cstddef>
#include <span>
#include <string>

/// Memory for strings of many megabytes. Two things are slow there: moving a string as it grows,
/// and the first write to each page.
namespace quillstead::OS {

/// Asks the system for large pages, because the memory will be written from its start. Does nothing
/// below a few megabytes, or where the system has no large pages.
void preferLargePages(std::span<std::byte> memory);

/// Moves `bytes` into memory where they can grow to sixteen times `size`, or eight times if that is
/// huge. Memory that is never written costs nothing.
[[gnu::noinline]] inline void moveToLargeMemory(std::string& bytes, std::size_t size) {
  constexpr std::size_t huge = 64U << 20U;  // sixteen of these are what a small machine may refuse
  const std::size_t growth = size < huge ? 16 : 8;
  std::string roomier;
  roomier.reserve(growth * size);
  preferLargePages(std::as_writable_bytes(std::span(roomier.data(), roomier.capacity())));
  roomier += bytes;
  bytes = std::move(roomier);
}

/// Makes room for `count` more bytes at the end of `bytes`. Small strings grow by themselves.
inline void makeRoom(std::string& bytes, std::size_t count) {
  constexpr std::size_t small = 65'536;
  const std::size_t size = bytes.size() + count;
  if (size > small && size > bytes.capacity()) moveToLargeMemory(bytes, size);
}

}  // namespace quillstead::OS
