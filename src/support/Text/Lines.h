#pragma once

#include <string>
#include <string_view>

/// Text looked at line by line.
namespace quillstead::Text {

/// The first line of `text`, without its line feed and a carriage return before that; removes it
/// from `text`, which must not be empty.
std::string_view takeLine(std::string_view& text);

/// `text` with line feeds for carriage returns and line feeds.
std::string withLineFeeds(std::string_view text);

/// `text` as one line: every run of white space and control characters one blank, none at the ends.
std::string onOneLine(std::string_view text);

}  // namespace quillstead::Text
