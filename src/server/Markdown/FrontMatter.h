#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::server {

/// The lines between "---" and "---" at the top of a card, each "key: value". A value may be in
/// quotes. A list is "[a, b]", or "a, b", or lines "- a" below its key.
struct FrontMatter {
  std::vector<std::pair<std::string, std::vector<std::string>>> fields;  ///< in their order
  std::string_view rest;  ///< the text after it, a view into the parsed text

  /// A text without front matter has no fields, and is all `rest`.
  static FrontMatter parse(std::string_view text);

  /// The values of `key`, empty when there is none.
  [[nodiscard]] std::vector<std::string> values(std::string_view key) const;

  /// `value` as `parse` reads it back, in quotes if needed.
  static std::string written(std::string_view value);
};

}  // namespace quillstead::server
