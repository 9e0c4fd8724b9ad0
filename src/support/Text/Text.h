#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Unicode text in UTF-8. Every operation takes any bytes: what is not UTF-8 counts as U+FFFD.
namespace quillstead::Text {

inline constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";  ///< U+FFFD

/// Whether a byte continues a character: no character begins with it.
constexpr bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

/// The first character of a byte string.
struct Decoded {
  char32_t character;  ///< U+FFFD when invalid
  std::size_t length;  ///< bytes it takes; when invalid, those of the longest beginning of a
                       ///< character found there, at least 1
  bool valid;
};

/// `bytes` must not be empty.
Decoded decodeFirst(std::string_view bytes);

/// Appends the character in UTF-8. False, with nothing appended, when `character` is a surrogate or
/// beyond U+10FFFF.
bool appendCharacter(std::string& text, std::uint32_t character);

/// `bytes` with each invalid sequence replaced by U+FFFD.
std::string repaired(std::string bytes);

/// `text` without Unicode white space and line ends at both ends.
std::string_view trimmed(std::string_view text);

/// True when `text` contains only white space and line ends.
bool isBlank(std::string_view text);

/// The texts one behind the other, with `separator` between them.
template <typename Texts>
std::string joined(const Texts& texts, std::string_view separator) {
  std::size_t size = 0;
  for (const std::string_view text : texts) size += text.size() + separator.size();
  std::string all;
  all.reserve(size);
  std::string_view before;
  for (const std::string_view text : texts) {
    all.append(before).append(text);
    before = separator;
  }
  return all;
}

/// The first `count` user-perceived characters (extended grapheme clusters) of `text`.
std::string_view firstCharacters(std::string_view text, std::size_t count);

/// Removes the first line from `text`, which must not be empty, and returns it without its line
/// end.
std::string_view takeLine(std::string_view& text);

/// `text` with each "\r\n" replaced by "\n".
std::string withLineFeeds(std::string_view text);

/// `text` as one line: every run of white space and control characters one blank, none at the ends.
std::string onOneLine(std::string_view text);

}  // namespace quillstead::Text
