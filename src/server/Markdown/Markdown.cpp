#include "server/Markdown/Markdown.h"

#include "support/Text/Text.h"

#include <algorithm>
#include <cctype>
#include <utility>

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

/// The start of a code block that is never closed; the end of `text` when every block is closed.
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

/// The heading level that this underline gives to the text above it: 1 for "===", 2 for "---";
/// else 0.
std::size_t levelByUnderline(std::string_view line) {
  const std::size_t indent = lengthOfRun(line, ' ');
  if (indent >= codeIndent || indent == line.size()) return 0;
  line.remove_prefix(indent);
  const char mark = line[0];
  if (mark != '=' && mark != '-') return 0;
  if (!Text::isBlank(line.substr(lengthOfRun(line, mark)))) return 0;
  return mark == '=' ? 1 : 2;
}

/// True for text that an underline can turn into a heading: not a list, quotation, code or rule.
bool isPlainText(std::string_view line) {
  const std::size_t indent = lengthOfRun(line, ' ');
  if (indent >= codeIndent || line.starts_with('\t') || heading(line)) return false;
  line.remove_prefix(indent);
  if (isListItem(line) || line.starts_with('>')) return false;
  if (line.starts_with("```") || line.starts_with("~~~")) return false;
  return std::any_of(line.begin(), line.end(), [](char byte) {
    const auto letter = static_cast<unsigned char>(byte);
    return letter >= 0x80 || std::isalnum(letter) != 0;
  });
}

/// Copies lines and lowers the headings.
class Lowering {
 public:
  enum class Line { mayBeHeading, isCode };

  void add(std::string_view line, Line kind) {
    const std::size_t underline = kind == Line::isCode ? 0 : levelByUnderline(line);
    if (underline != 0 && linesOfText_ > 0) {
      makeHeadingAbove(line, underline);
      linesOfText_ = 0;
      return;
    }
    lastLine_ = result_.size();
    linesOfText_ = isPlainText(line) ? linesOfText_ + 1 : 0;
    if (kind == Line::mayBeHeading && heading(line)) {
      line.remove_prefix(lengthOfRun(line, ' '));
      result_.append(std::min(levelsLower, deepestHeading - lengthOfRun(line, '#')), '#');
    }
    result_.append(line) += '\n';
  }

  /// Every line ends in a line feed.
  std::string result() && { return std::move(result_); }

 private:
  /// A heading of several lines cannot be written another way, so it becomes text above a rule.
  void makeHeadingAbove(std::string_view underline, std::size_t level) {
    if (linesOfText_ > 1) {
      result_.append("\n").append(underline) += '\n';
      return;
    }
    const std::size_t indent = lengthOfRun(std::string_view(result_).substr(lastLine_), ' ');
    result_.replace(lastLine_, indent, std::string(level + levelsLower, '#') + ' ');
  }

  std::string result_;
  std::size_t lastLine_ = 0;     ///< where the last line begins in `result_`
  std::size_t linesOfText_ = 0;  ///< how many lines of plain text the last ones are
};

}  // namespace

std::string withLowerHeadings(std::string_view text) {
  const std::size_t openCode = beginOfOpenCode(text);
  Lowering lowering;
  CodeFence code;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t at = text.size() - rest.size();
    const std::string_view line = Text::takeLine(rest);
    const bool isCode = code.covers(line) && at < openCode;
    const bool looksLikeHeader = rest.starts_with('(');
    lowering.add(
        line, isCode && !looksLikeHeader ? Lowering::Line::isCode : Lowering::Line::mayBeHeading);
  }
  std::string result = std::move(lowering).result();
  if (!result.empty() && !text.ends_with('\n')) result.pop_back();
  return result;
}

}  // namespace quillstead::server::Markdown
