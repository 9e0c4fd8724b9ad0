#pragma once

#include <string_view>

namespace quillstead::Stderr {

/// Writes "quillstead-hook: ", `text` and a line end to standard error, at once. What is not UTF-8
/// in `text` goes out as U+FFFD. A line that cannot be written is lost.
void line(std::string_view text);

}  // namespace quillstead::Stderr
