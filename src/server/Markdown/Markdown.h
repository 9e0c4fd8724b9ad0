#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The parts of Markdown that the server understands, line by line.
namespace quillstead::server::Markdown {

/// The text of a heading, "# Title" to "###### Title"; absent when the line is none.
std::optional<std::string_view> heading(std::string_view line);

/// True for an item of an outermost list: "- text", "* text", "+ text", "1. text", "1) text".
bool isListItem(std::string_view line);

/// Tracks which lines are code between "```" or "~~~".
class CodeFence {
 public:
  /// Takes the next line; true when it is code, or opens or closes code.
  bool covers(std::string_view line);

  /// True after a line that opened code which no line has closed.
  [[nodiscard]] bool isOpen() const { return mark_ != 0; }

 private:
  std::string_view::value_type mark_ = 0;  ///< 0 outside of code
  std::size_t length_ = 0;
};

/// `text` with each heading two levels lower, at most at the sixth, and underlined ones ("===" or
/// "---" below a line) written with "#". An underlined heading of several lines becomes text. Lines
/// in code stay as they are, but for two: a heading that is followed by a line in brackets, as the
/// header of a card is, and one in code that never ends. The former is found whatever white space
/// indents it and stands in it.
std::string withLowerHeadings(std::string_view text);

/// `text` without its HTML comments, which are notes for people. In code they stay: between fences,
/// between backticks, and in indented lines. A line that holds nothing else goes as a whole. One
/// that begins a line and has no end goes on to the end of the text.
std::string withoutComments(std::string_view text);

}  // namespace quillstead::server::Markdown
