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

/// Recognises a byte order mark, else the pattern of zero bytes that the two characters every
/// JSON document begins with leave in the wider encodings.
DetectedEncoding detectEncoding(std::string_view bytes);

/// `bytes` (without a byte order mark) from a UTF-16 or UTF-32 encoding to UTF-8; absent when a
/// unit is cut off, a surrogate stands alone or a value is no character.
std::optional<std::string> toUTF8(std::string_view bytes, Encoding encoding);

/// The two halves in which UTF-16 spells a character beyond U+FFFF.
namespace Surrogates {

constexpr bool isHigh(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLow(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// The character that a high and a low half spell.
constexpr std::uint32_t joined(std::uint32_t high, std::uint32_t low) {
  return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
}

}  // namespace Surrogates

}  // namespace quillstead::JSON
