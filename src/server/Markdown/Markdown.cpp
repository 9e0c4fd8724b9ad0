#include "server/Markdown/Markdown.h"

#include "support/Text/Text.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
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

constexpr std::string_view opening = "<!--";
constexpr std::string_view closing = "-->";

/// The end of the run of backticks at `at`.
std::size_t endOfRun(std::string_view text, std::size_t at) {
  return std::min(text.find_first_not_of('`', at), text.size());
}

/// Copies a text line by line without its comments.
class Copy {
 public:
  explicit Copy(std::string_view text) : text_(text) {}

  std::string make() {
    while (place_ < text_.size()) {
      const std::string_view line = lineAt(place_);
      if (fence_.covers(withoutEnd(line)) || isIndentedCode(line)) {
        copyTo(place_ + line.size());
      } else {
        copyLine();
      }
    }
    return std::move(copy_);
  }

 private:
  /// With its line end.
  [[nodiscard]] std::string_view lineAt(std::size_t begin) const {
    const std::size_t end = text_.find('\n', begin);
    return text_.substr(begin, end == std::string_view::npos ? end : end - begin + 1);
  }

  static std::string_view withoutEnd(std::string_view line) {
    if (line.ends_with('\n')) line.remove_suffix(1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
  }

  void copyTo(std::size_t end) {
    copy_ += text_.substr(place_, end - place_);
    place_ = end;
  }

  /// True when a line is code because of its indentation: after an empty line, and not in a list.
  bool isIndentedCode(std::string_view line) {
    constexpr std::string_view indent = "    ";
    if (Text::isBlank(line)) {
      isBehindBlank_ = true;
      return false;
    }
    const bool isIndented = line.starts_with(indent) || line.starts_with('\t');
    const bool isCode = isIndented && isBehindBlank_ && !isInList_;
    if (!isIndented) {
      const std::size_t blanks = line.find_first_not_of(' ');
      isInList_ = isListItem(line.substr(blanks)) || (isInList_ && blanks > 0);
    }
    if (!isCode) isBehindBlank_ = false;
    return isCode;
  }

  /// Copies up to the end of the line in which its last comment or code span ends.
  void copyLine() {
    bool isFirst = true;  // nothing but blanks so far
    while (place_ < text_.size()) {
      const char character = text_[place_];
      if (character == '`') {
        copyTo(endOfCode());
      } else if (text_.substr(place_).starts_with(opening) && skipComment(isFirst)) {
        if (isFirst && wasWholeLine()) return;
        continue;
      } else {
        copyTo(place_ + 1);
      }
      if (character == '\n') return;
      isFirst = isFirst && (character == ' ' || character == '\t');
    }
  }

  /// The place after the closing backticks of the code span that opens here. A span ends before an
  /// empty line; without closing backticks there is no span.
  std::size_t endOfCode() {
    const std::size_t end = endOfRun(text_, place_);
    if (paragraph_ < end) paragraph_ = std::min(text_.find("\n\n", end), text_.size());
    for (std::size_t at = text_.find('`', end); at < paragraph_; at = text_.find('`', at)) {
      const std::size_t next = endOfRun(text_, at);
      if (next - at == end - place_) return next;
      at = next;
    }
    return end;
  }

  /// False when a comment has no end: then it is ordinary text.
  bool skipComment(bool isFirst) {
    constexpr std::size_t shortest = 2;  // "<!-->" is one as well
    const std::size_t end =
        isNoneClosed_ ? std::string_view::npos : text_.find(closing, place_ + shortest);
    isNoneClosed_ = end == std::string_view::npos;
    if (end == std::string_view::npos && !isFirst) return false;
    place_ = end == std::string_view::npos ? text_.size() : end + closing.size();
    return true;
  }

  /// Removes the rest of a line that contained only the comment.
  bool wasWholeLine() {
    const std::string_view rest = lineAt(place_);
    if (!Text::isBlank(rest)) return false;
    copy_.resize(copy_.size() - blanksAtEnd());
    place_ += rest.size();
    return true;
  }

  [[nodiscard]] std::size_t blanksAtEnd() const {
    const std::size_t last = copy_.find_last_not_of(" \t");
    return copy_.size() - (last == std::string::npos ? 0 : last + 1);
  }

  std::string_view text_;
  std::size_t place_ = 0;
  std::string copy_;
  CodeFence fence_;
  std::size_t paragraph_ = 0;  ///< the end of one that is looked through
  bool isNoneClosed_ = false;  ///< from the place on
  bool isBehindBlank_ = true;
  bool isInList_ = false;
};

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
  std::size_t begin = text.size();
  const bool mayHaveCode = text.find("```") != text.npos || text.find("~~~") != text.npos;
  if (!mayHaveCode) return begin;
  CodeFence code;
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

  explicit Lowering(std::size_t size) { result_.reserve(size + 1); }

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

/// "## Title" when a reader would take `line` for the title of a card, whatever white space it has.
std::optional<std::string> titleIn(std::string_view line) {
  constexpr std::string_view mark = "##";
  if (line.find(mark) == std::string_view::npos) return std::nullopt;  // most lines, quickly
  line = Text::trimmed(line);
  if (!line.starts_with(mark)) return std::nullopt;
  line.remove_prefix(mark.size());
  const std::string_view title = Text::trimmed(line);
  if (title.empty() || title.size() == line.size()) return std::nullopt;
  return std::string(mark).append(" ").append(title);
}

bool beginsWithBracket(std::string_view rest) {
  return !rest.empty() && Text::trimmed(Text::takeLine(rest)).starts_with('(');
}

}  // namespace

std::string withLowerHeadings(std::string_view text) {
  const std::size_t openCode = beginOfOpenCode(text);
  Lowering lowering(text.size());
  CodeFence code;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t at = text.size() - rest.size();
    const std::string_view line = Text::takeLine(rest);
    const bool isCode = code.covers(line) && at < openCode;
    const std::optional<std::string> title = titleIn(line);
    if (title && beginsWithBracket(rest)) {
      lowering.add(*title, Lowering::Line::mayBeHeading);
      continue;
    }
    const bool looksLikeHeader = rest.starts_with('(');
    lowering.add(
        line, isCode && !looksLikeHeader ? Lowering::Line::isCode : Lowering::Line::mayBeHeading);
  }
  std::string result = std::move(lowering).result();
  if (!result.empty() && !text.ends_with('\n')) result.pop_back();
  return result;
}

std::string withoutComments(std::string_view text) {
  if (text.find(opening) == std::string_view::npos) return std::string(text);
  return Copy(text).make();
}

}  // namespace quillstead::server::Markdown
