#pragma once

#include <cstddef>
#include <string_view>

namespace quillstead {

/// The first line of `text`, without its line feed and a carriage return before that; removes it
/// from `text`, which must not be empty.
inline std::string_view takeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace quillstead
