#include "server/Markdown/Markdown.h"

#include "support/Text/Text.h"

#include <algorithm>

namespace quillstead::server::Markdown {

namespace {

constexpr std::size_t deepestHeading = 6;
constexpr std::size_t levelsLower = 2;
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

namespace {

/// Where code begins that does not end; the end of `text` when all of it does.
std::size_t beginOfOpenCode(std::string_view text) {
  CodeFence code;
  std::size_t begin = text.size();
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t at = text.size() - rest.size();
    const bool wasOpen = code.isOpen();
    code.covers(Text::takeLine(rest));
    if (code.isOpen() && !wasOpen) begin = at;
  }
  return code.isOpen() ? begin : text.size();
}

}  // namespace

std::string withLowerHeadings(std::string_view text) {
  const std::size_t openCode = beginOfOpenCode(text);
  std::string result;
  CodeFence code;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t at = text.size() - rest.size();
    const std::string_view line = Text::takeLine(rest);
    const bool isCode = code.covers(line) && at < openCode;
    const bool looksLikeHeader = rest.starts_with('(');
    if (heading(line) && (!isCode || looksLikeHeader)) {
      const std::size_t indent = lengthOfRun(line, ' ');
      const std::size_t level = lengthOfRun(line.substr(indent), '#');
      result.append(std::min(levelsLower, deepestHeading - level), '#');
      result.append(line.substr(indent));
    } else {
      result.append(line);
    }
    if (!rest.empty() || text.ends_with('\n')) result += '\n';
  }
  return result;
}

}  // namespace quillstead::server::Markdown
