#pragma once

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

}  // namespace quillstead::JSON
