#include "support/Text/Text.h"

#include "support/Text/Blocks.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <utility>

namespace quillstead::Text {

namespace {

bool isWhiteSpace(char32_t character) {
  if (character < 0x80) return character == ' ' || (character >= '\t' && character <= '\r');
  if (character == 0x85) return true;
  switch (utf8proc_category(static_cast<utf8proc_int32_t>(character))) {
    case UTF8PROC_CATEGORY_ZS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    default:
      return false;
  }
}

/// The last character of `bytes`, which must not be empty.
Decoded decodeLast(std::string_view bytes) {
  constexpr std::size_t longest = 4;
  std::size_t length = 1;
  while (length < longest && length < bytes.size() && isContinuation(bytes[bytes.size() - length]))
    ++length;
  const Decoded decoded = decodeFirst(bytes.substr(bytes.size() - length));
  if (decoded.valid && decoded.length == length) return decoded;
  return {0xFFFD, 1, false};
}

/// How many bytes at the start of `bytes` begin a character without completing it, at least 1.
std::size_t incompleteLength(std::string_view bytes) {
  const auto lead = static_cast<unsigned char>(bytes[0]);
  if (lead < 0xC2 || lead > 0xF4 || bytes.size() < 2) return 1;

  // The second byte alone decides whether the sequence would be overlong, a surrogate or too high.
  const auto second = static_cast<unsigned char>(bytes[1]);
  unsigned char lowest = 0x80;
  unsigned char highest = 0xBF;
  if (lead == 0xE0) lowest = 0xA0;
  if (lead == 0xED) highest = 0x9F;
  if (lead == 0xF0) lowest = 0x90;
  if (lead == 0xF4) highest = 0x8F;
  if (lead < 0xE0 || second < lowest || second > highest) return 1;

  const bool thirdContinues = lead >= 0xF0 && bytes.size() > 2 && isContinuation(bytes[2]);
  return thirdContinues ? 3 : 2;
}

/// How many bytes at the start of `text` are ASCII.
std::size_t asciiRun(std::string_view text) {
  return Blocks::bytesBefore(text, [](Blocks::Block bytes) { return bytes >= Blocks::Byte{0x80}; });
}

/// How many bytes of ASCII that can be seen `text` begins with.
std::size_t plainLength(std::string_view text) {
  const auto* const end =
      std::find_if(text.begin(), text.end(), [](char byte) { return byte <= ' ' || byte >= 0x7F; });
  return static_cast<std::size_t>(end - text.begin());
}

}  // namespace

Decoded decodeFirst(std::string_view bytes) {
  const auto first = static_cast<unsigned char>(bytes[0]);
  if (first < 0x80) return {first, 1, true};
  utf8proc_int32_t character = 0;
  const utf8proc_ssize_t length =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(bytes.data()),
                       static_cast<utf8proc_ssize_t>(bytes.size()), &character);
  if (length > 0) return {static_cast<char32_t>(character), static_cast<std::size_t>(length), true};
  return {0xFFFD, incompleteLength(bytes), false};
}

bool appendCharacter(std::string& text, std::uint32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return true;
  }
  const auto codepoint = static_cast<utf8proc_int32_t>(character);
  if (character > 0x10FFFF || !utf8proc_codepoint_valid(codepoint)) return false;
  std::array<utf8proc_uint8_t, 4> bytes{};
  const utf8proc_ssize_t length = utf8proc_encode_char(codepoint, bytes.data());
  text.append(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length));
  return true;
}

std::string repaired(std::string bytes) {
  std::size_t valid = asciiRun(bytes);
  while (valid < bytes.size()) {
    const Decoded decoded = decodeFirst(std::string_view(bytes).substr(valid));
    if (!decoded.valid) break;
    valid += decoded.length;
    valid += asciiRun(std::string_view(bytes).substr(valid));
  }
  if (valid == bytes.size()) return bytes;

  std::string text = bytes.substr(0, valid);
  std::string_view rest = std::string_view(bytes).substr(valid);
  while (!rest.empty()) {
    const Decoded decoded = decodeFirst(rest);
    text += decoded.valid ? rest.substr(0, decoded.length) : replacementCharacter;
    rest.remove_prefix(decoded.length);
  }
  return text;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty()) {
    const Decoded first = decodeFirst(text);
    if (!isWhiteSpace(first.character)) break;
    text.remove_prefix(first.length);
  }
  while (!text.empty()) {
    const Decoded last = decodeLast(text);
    if (!isWhiteSpace(last.character)) break;
    text.remove_suffix(last.length);
  }
  return text;
}

bool isBlank(std::string_view text) { return trimmed(text).empty(); }

std::string_view firstCharacters(std::string_view text, std::size_t count) {
  std::size_t length = 0;
  std::size_t characters = 0;
  utf8proc_int32_t state = 0;
  char32_t previous = 0;
  while (length < text.size()) {
    const Decoded next = decodeFirst(text.substr(length));
    const bool begins = length == 0 || utf8proc_grapheme_break_stateful(
                                           static_cast<utf8proc_int32_t>(previous),
                                           static_cast<utf8proc_int32_t>(next.character), &state);
    if (begins && characters++ == count) break;
    previous = next.character;
    length += next.length;
  }
  return text.substr(0, length);
}

std::string_view takeLine(std::string_view& text) {
  const std::size_t end =
      Blocks::bytesBefore(text, [](Blocks::Block bytes) { return bytes == Blocks::Byte{'\n'}; });
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::string withLineFeeds(std::string_view text) {
  std::string result(text);
  std::size_t kept = std::min(text.find('\r'), text.size());
  for (std::size_t at = kept; at < result.size(); ++at) {
    if (result[at] == '\r' && at + 1 < result.size() && result[at + 1] == '\n') continue;
    result[kept++] = result[at];
  }
  result.resize(kept);
  return result;
}

std::string onOneLine(std::string_view text) {
  std::string line;
  bool gap = false;
  while (!text.empty()) {
    const std::size_t plain = plainLength(text);
    if (plain > 0) {
      if (std::exchange(gap, false)) line += ' ';
      line += text.substr(0, plain);
      text.remove_prefix(plain);
      continue;
    }
    const Decoded next = decodeFirst(text);
    const std::string_view character = text.substr(0, next.length);
    text.remove_prefix(next.length);
    if (next.character < 0x80 || isWhiteSpace(next.character)) {
      gap = !line.empty();
      continue;
    }
    if (std::exchange(gap, false)) line += ' ';
    line += next.valid ? character : replacementCharacter;
  }
  return line;
}

}  // namespace quillstead::Text
