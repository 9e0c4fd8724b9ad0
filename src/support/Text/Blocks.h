#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Searching text in blocks of sixteen bytes, which a processor compares in one step.
namespace quillstead::Text::Blocks {

using Byte = unsigned char;
using Block [[gnu::vector_size(16)]] = Byte;
using Halves [[gnu::vector_size(sizeof(Block))]] = std::uint64_t;

/// The number of bytes in `block` before the first match.
template <typename Test>
std::size_t bytesBefore(Block block, Test found) {
  static_assert(std::endian::native == std::endian::little, "the first byte is the lowest");
  // A comparison of blocks sets every bit of the bytes for which it holds.
  const auto halves = std::bit_cast<Halves>(found(block));
  if (halves[0] != 0) return static_cast<std::size_t>(std::countr_zero(halves[0])) / 8;
  return sizeof halves[0] + static_cast<std::size_t>(std::countr_zero(halves[1])) / 8;
}

/// The word that starts at `from`, in the machine's byte order.
template <typename Word>
std::uint64_t load(const char* from) {
  Word word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

/// A text shorter than a block, padded with zeros. Two loads that overlap need fewer instructions
/// than a call of `memcpy`, and nearly every string ends in such a part.
inline Block paddedBlock(std::string_view text) {
  const char* const first = text.data();
  const std::size_t size = text.size();
  if (size > 8) {
    return std::bit_cast<Block>(Halves{load<std::uint64_t>(first),
                                       load<std::uint64_t>(first + size - 8) >> (8 * (16 - size))});
  }
  std::uint64_t low = 0;
  if (size >= 4) {
    low = load<std::uint32_t>(first) | load<std::uint32_t>(first + size - 4) << (8 * (size - 4));
  } else if (size > 0) {
    low = load<Byte>(first) | load<Byte>(first + size / 2) << (8 * (size / 2)) |
          load<Byte>(first + size - 1) << (8 * (size - 1));
  }
  return std::bit_cast<Block>(Halves{low, 0});
}

/// The same for a text. Each block up to the match is passed to `take` with its place in the text;
/// the last block of the text is padded with zeros.
template <typename Test, typename Take>
std::size_t bytesBefore(std::string_view text, Test found, Take take) {
  std::size_t before = 0;
  Block block;
  for (; text.size() - before >= sizeof block; before += sizeof block) {
    std::memcpy(&block, text.data() + before, sizeof block);
    take(before, block);
    const std::size_t inBlock = bytesBefore(block, found);
    if (inBlock < sizeof block) return before + inBlock;
  }
  const std::size_t left = text.size() - before;
  if (left == 0) return before;
  block = paddedBlock(text.substr(before));
  take(before, block);
  return before + std::min(left, bytesBefore(block, found));
}

/// The number of bytes in `text` before the first match. The test takes a block and consists of
/// comparisons joined by `|`:
/// `[](Block bytes) { return (bytes == Byte{'"'}) | (bytes < Byte{' '}); }`.
template <typename Test>
std::size_t bytesBefore(std::string_view text, Test found) {
  return bytesBefore(text, found, [](std::size_t /*place*/, Block /*block*/) {});
}

/// The same, and copies these bytes to `to`, rounded up to whole blocks: `to` must have room for
/// them.
template <typename Test>
std::size_t copyBefore(std::string_view text, char* to, Test found) {
  return bytesBefore(text, found, [to](std::size_t place, Block block) {
    std::memcpy(to + place, &block, sizeof block);
  });
}

/// The same for parts of texts of this size and more. It asks for memory before it needs it: not
/// every processor does that by itself for blocks that are read and written in turn, and waiting
/// takes longer than copying.
constexpr std::size_t longText = 1'024;

template <typename Test>
[[gnu::noinline]] std::size_t copyLongBefore(std::string_view text, char* to, Test found) {
  return bytesBefore(text, found, [text, to](std::size_t place, Block block) {
    constexpr std::size_t ahead = 1'024;  // behind the end of the text it does nothing
    constexpr int forWriting = 1;
    __builtin_prefetch(text.data() + place + ahead);
    __builtin_prefetch(to + place + ahead, forWriting);
    std::memcpy(to + place, &block, sizeof block);
  });
}

}  // namespace quillstead::Text::Blocks
