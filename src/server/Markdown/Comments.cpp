#include "server/Markdown/Comments.h"

#include "server/Markdown/Markdown.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <cstddef>

namespace quillstead::server::Markdown {

namespace {

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

std::string withoutComments(std::string_view text) {
  if (text.find(opening) == std::string_view::npos) return std::string(text);
  return Copy(text).make();
}

}  // namespace quillstead::server::Markdown
