#pragma once

#include <string>
#include <string_view>

namespace quillstead::server::Markdown {

/// `text` without its HTML comments, which are notes for people. In code they stay: between fences,
/// between backticks, and in indented lines. A line that holds nothing else goes as a whole. One
/// that begins a line and has no end goes on to the end of the text.
std::string withoutComments(std::string_view text);

}  // namespace quillstead::server::Markdown
