#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::JSON {

/// How the bytes of a JSON document encode its characters.
enum class Encoding { utf8, utf16LittleEndian, utf16BigEndian, utf32LittleEndian, utf32BigEndian };

struct DetectedEncoding {
  Encoding encoding;
  std::size_t markLength;  ///< bytes of the byte order mark at the start; 0 when there is none
};

/// Detects the encoding by the byte order mark, else by the NUL bytes in the first two characters.
DetectedEncoding detectEncoding(std::string_view bytes);

/// Converts `bytes` (without a byte order mark) from UTF-16 or UTF-32 to UTF-8. Absent when a unit
/// is incomplete, a surrogate is alone, or a value is not a character.
std::optional<std::string> toUTF8(std::string_view bytes, Encoding encoding);

/// The two halves of a character above U+FFFF in UTF-16.
namespace Surrogates {

constexpr bool isHigh(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLow(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// The character that a high and a low half spell.
constexpr std::uint32_t joined(std::uint32_t high, std::uint32_t low) {
  return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
}

}  // namespace Surrogates

}  // namespace quillstead::JSON
