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

/// One card, parsed from its file.
struct Card {
  std::string title;  ///< the first heading; without one, the file's name, usually without ".md"
  std::vector<std::string> tags;  ///< from the front matter
  std::string body;  ///< the text after the front matter, without the title if that comes first

  /// `text` is valid UTF-8. Line ends of the body become line feeds.
  static Card parse(std::string_view text, std::string_view fileName);
};

}  // namespace quillstead::server

/// Names of card files.
namespace quillstead::server::CardName {

/// A file name from a title: its letters and digits in lower case, separated by hyphens, at most 60
/// bytes; then `mark` and ".md".
std::string fromTitle(std::string_view title, std::string_view mark);

/// Six random letters and digits (a thousand million combinations), so that cards with the same
/// title that are added in two clones of a repository get different files.
std::string randomMark();

/// Why a name from a caller cannot be a file in a store's memory directory.
enum class Flaw { none, absolute, leavesStore, inSubdirectory, unusable };

Flaw flawOf(std::string_view name);

}  // namespace quillstead::server::CardName
