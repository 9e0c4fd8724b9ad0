#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillstead::Text {

/// Spreads every bit of `value` over all of the result (the finaliser of SplitMix64).
constexpr std::uint64_t mixed(std::uint64_t value) {
  value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
  value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
  return value ^ (value >> 31U);
}

/// A hash of 64 bits that is not safe against an attacker who looks for collisions. It is the same
/// on every machine and in every version, so it may be stored in files.
std::uint64_t hashOf(std::string_view bytes);

/// Lower-case hexadecimal digits, without leading zeros.
std::string inHexadecimal(std::uint64_t number);

}  // namespace quillstead::Text
