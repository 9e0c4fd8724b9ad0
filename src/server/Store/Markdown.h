#pragma once

#include <optional>
#include <string_view>

/// The little of Markdown that memory has to understand, line by line.
namespace quillstead::Markdown {

/// The text of a heading, "# Title" to "###### Title"; absent when the line is none.
std::optional<std::string_view> heading(std::string_view line);

/// True for an item of an outermost list: "- text", "* text", "+ text", "1. text", "1) text".
bool isListItem(std::string_view line);

/// Follows which lines lie in code between "```" or "~~~".
class CodeFence {
 public:
  /// Takes the next line; true when it is code, or opens or closes code.
  bool covers(std::string_view line);

 private:
  std::string_view::value_type mark_ = 0;  ///< 0 outside of code
  std::size_t length_ = 0;
};

}  // namespace quillstead::Markdown
