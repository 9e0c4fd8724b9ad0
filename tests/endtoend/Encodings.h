#pragma once

#include <string>
#include <vector>

namespace quillstead {

/// `text` in UTF-8, UTF-16 and UTF-32, in both byte orders, with and without a byte order mark.
std::vector<std::string> inEveryEncoding(const std::u32string& text);

}  // namespace quillstead
