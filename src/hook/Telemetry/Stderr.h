#pragma once

#include <cstddef>
#include <string_view>

namespace quillstead::hook::Stderr {

/// The most bytes that a record of the hook's own words takes: as many as a pipe takes at once.
inline constexpr std::size_t usualLength = 4096;

/// Writes "quillstead-hook: ", `text` and a line end to standard error, at once. What is not UTF-8
/// in `text` goes out as U+FFFD, and it is cut where the record, its line end counted, would be
/// longer than `longest` bytes. Never waits: what cannot be written now is lost.
void line(std::string_view text, std::size_t longest = usualLength);

}  // namespace quillstead::hook::Stderr
