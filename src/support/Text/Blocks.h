#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Texts looked at in blocks of sixteen bytes, which a processor compares at once.
namespace quillstead::Text::Blocks {

using Byte = unsigned char;
using Block [[gnu::vector_size(16)]] = Byte;

/// How many bytes at the start of `text` are not found by the test. It is given one byte, or a
/// block of them, and made of comparisons joined by `|`:
/// `[](auto bytes) { return (bytes == Byte{'"'}) | (bytes < Byte{' '}); }`.
template <typename Test>
std::size_t runWithout(std::string_view text, Test found) {
  std::size_t run = 0;
  for (; text.size() - run >= sizeof(Block); run += sizeof(Block)) {
    Block block;
    std::memcpy(&block, text.data() + run, sizeof block);
    // A comparison of blocks sets every bit of the bytes for which it holds.
    const auto [low, high] = std::bit_cast<std::array<std::uint64_t, 2>>(found(block));
    if (low != 0) return run + static_cast<std::size_t>(std::countr_zero(low)) / 8;
    if (high != 0) return run + 8 + static_cast<std::size_t>(std::countr_zero(high)) / 8;
  }
  static_assert(std::endian::native == std::endian::little, "the first byte is the lowest");
  while (run < text.size() && !found(static_cast<Byte>(text[run]))) ++run;
  return run;
}

}  // namespace quillstead::Text::Blocks
