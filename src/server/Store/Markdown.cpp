#include "server/Store/Markdown.h"

#include "support/Text/Text.h"

namespace quillstead::Markdown {

namespace {

constexpr std::size_t deepestHeading = 6;
constexpr std::size_t shortestFence = 3;
constexpr std::size_t codeIndent = 4;

std::size_t lengthOfRun(std::string_view text, char character) {
  const std::size_t end = text.find_first_not_of(character);
  return end == std::string_view::npos ? text.size() : end;
}

bool isBlankOrEnd(std::string_view text, std::size_t at) {
  return at >= text.size() || text[at] == ' ' || text[at] == '\t';
}

}  // namespace

std::optional<std::string_view> heading(std::string_view line) {
  const std::size_t indent = lengthOfRun(line, ' ');
  if (indent >= codeIndent) return std::nullopt;
  line.remove_prefix(indent);
  const std::size_t level = lengthOfRun(line, '#');
  if (level == 0 || level > deepestHeading || !isBlankOrEnd(line, level)) return std::nullopt;

  std::string_view text = Text::trimmed(line.substr(level));
  const std::size_t lastOther = text.find_last_not_of('#');
  if (lastOther == std::string_view::npos) return std::string_view();
  if (lastOther + 1 < text.size() && isBlankOrEnd(text, lastOther)) {
    text = Text::trimmed(text.substr(0, lastOther));  // "## Title ##"
  }
  return text;
}

bool isListItem(std::string_view line) {
  if (line.empty()) return false;
  if (line[0] == '-' || line[0] == '*' || line[0] == '+') return isBlankOrEnd(line, 1);
  const std::size_t digits = line.find_first_not_of("0123456789");
  return digits != 0 && digits != std::string_view::npos &&
         (line[digits] == '.' || line[digits] == ')') && isBlankOrEnd(line, digits + 1);
}

bool CodeFence::covers(std::string_view line) {
  const std::size_t indent = line.find_first_not_of(" \t");
  if (indent == std::string_view::npos) return mark_ != 0;
  line.remove_prefix(indent);
  const char mark = line[0];
  const std::size_t length = lengthOfRun(line, mark);
  const bool isFence = (mark == '`' || mark == '~') && length >= shortestFence;
  if (mark_ == 0) {
    if (!isFence || (mark == '`' && line.find('`', length) != std::string_view::npos)) return false;
    mark_ = mark;
    length_ = length;
    return true;
  }
  if (isFence && mark == mark_ && length >= length_ && Text::isBlank(line.substr(length))) {
    mark_ = 0;
  }
  return true;
}

}  // namespace quillstead::Markdown
