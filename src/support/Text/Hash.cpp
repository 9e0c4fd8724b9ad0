#include "support/Text/Hash.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>

namespace quillstead::Text {

namespace {

/// Up to eight bytes as one number, the first byte lowest.
std::uint64_t word(std::string_view bytes) {
  std::uint64_t value = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&value, bytes.data(), bytes.size());
  } else {
    for (std::size_t at = bytes.size(); at > 0; --at) {
      value = (value << 8U) | static_cast<unsigned char>(bytes[at - 1]);
    }
  }
  return value;
}

}  // namespace

std::uint64_t hashOf(std::string_view bytes) {
  std::uint64_t hash = mixed(bytes.size() + 1);
  for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), sizeof hash))) {
    hash = mixed(hash + word(bytes.substr(0, sizeof hash))) + 0x9E3779B97F4A7C15U;
  }
  return hash;
}

std::string inHexadecimal(std::uint64_t number) {
  constexpr int base = 16;
  std::array<char, base> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, base).ptr;
  return {digits.data(), end};
}

}  // namespace quillstead::Text
