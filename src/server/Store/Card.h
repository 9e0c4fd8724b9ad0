#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

/// One card, parsed from its file.
struct Card {
  std::string title;  ///< the first heading; without one, the file's name, usually without ".md"
  std::vector<std::string> tags;  ///< from the front matter
  std::string body;  ///< the text after the front matter, without the title if that comes first

  /// `text` is valid UTF-8. Line ends of the body become line feeds.
  static Card parse(std::string_view text, std::string_view fileName);
};

}  // namespace quillstead::server
