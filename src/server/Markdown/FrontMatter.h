#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::server {

/// The lines between "---" and "---" at the top of a card: "key: value" each. A value may stand in
/// quotes; a list is "[a, b]", or "a, b", or one "- a" a line below its key.
struct FrontMatter {
  std::vector<std::pair<std::string, std::vector<std::string>>> fields;  ///< in their order
  std::string_view rest;  ///< the text below, a view into what was parsed

  /// `text` without front matter gives no fields and all of it as the rest.
  static FrontMatter parse(std::string_view text);

  /// The values of `key`, empty when there is none.
  [[nodiscard]] std::vector<std::string> values(std::string_view key) const;

  /// `value` so that `parse` reads it back, in quotes where it needs them.
  static std::string written(std::string_view value);
};

}  // namespace quillstead::server
