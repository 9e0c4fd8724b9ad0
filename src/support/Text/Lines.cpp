#include "support/Text/Lines.h"

#include "support/Text/Text.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quillstead::Text {

std::string_view takeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
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
    const Decoded next = decodeFirst(text);
    const std::string_view character = text.substr(0, next.length);
    text.remove_prefix(next.length);
    const bool isPlain = next.character > ' ' && next.character < 0x7F;
    if (!isPlain && (next.character < 0x80 || isBlank(character))) {
      gap = !line.empty();
      continue;
    }
    if (std::exchange(gap, false)) line += ' ';
    line += next.valid ? character : replacementCharacter;
  }
  return line;
}

}  // namespace quillstead::Text
