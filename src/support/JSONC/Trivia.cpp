#include "support/JSONC/Trivia.h"

#include <algorithm>

namespace quillstead::JSONC {

Trivia skipTrivia(std::string_view text, std::size_t begin) {
  Trivia trivia{.next = begin,
                .contentEnd = begin,
                .hasComment = false,
                .endsWithLineComment = false,
                .isCut = false};
  while (trivia.next < text.size()) {
    const std::string_view rest = text.substr(trivia.next);
    if (isBlank(rest.front()) || isLineEnd(rest.front())) {
      ++trivia.next;
      continue;
    }
    const bool isLine = rest.starts_with("//");
    if (!isLine && !rest.starts_with("/*")) break;
    if (isLine) {
      trivia.next += std::min(rest.find_first_of("\r\n"), rest.size());
    } else {
      const std::size_t end = rest.find("*/", 2);
      trivia.isCut = end == std::string_view::npos;
      if (trivia.isCut) break;
      trivia.next += end + 2;
    }
    trivia.contentEnd = trivia.next;
    trivia.hasComment = true;
    trivia.endsWithLineComment = isLine;
  }
  return trivia;
}

}  // namespace quillstead::JSONC
