#pragma once

#include <cstddef>
#include <string_view>

namespace quillstead::hook::Stderr {

/// The most bytes in one of the hook's own messages: what a pipe takes in one write.
inline constexpr std::size_t usualLength = 4096;

/// Writes "quillstead-hook: ", `text` and a line end to standard error, in one write. Invalid UTF-8
/// becomes U+FFFD. The message is cut to `longest` bytes, with its line end. Never waits: what
/// cannot be written now is lost.
void line(std::string_view text, std::size_t longest = usualLength);

}  // namespace quillstead::hook::Stderr
