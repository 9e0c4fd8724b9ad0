#pragma once

#include <cstdint>

/// The two halves in which UTF-16 spells a character beyond U+FFFF.
namespace quillstead::JSON::Surrogates {

constexpr bool isHigh(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLow(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// The character that a high and a low half spell.
constexpr std::uint32_t joined(std::uint32_t high, std::uint32_t low) {
  return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
}

}  // namespace quillstead::JSON::Surrogates
