#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// JSON as people write it: with comments (`//` and `/* */`), trailing commas, a byte order mark,
/// and any indentation and line ends. A document is its text, unchanged, and a tree with the place
/// of each value in it.
namespace quillstead::JSONC {

enum class Kind { object, array, string, number, boolean, null };

struct Item;

/// A value's place in the text.
struct Node {
  Kind kind = Kind::null;
  std::size_t begin = 0;    ///< its first byte
  std::size_t end = 0;      ///< after its last byte
  std::vector<Item> items;  ///< of an object or an array, in order
};

/// A member of an object, or an element of an array.
struct Item {
  std::size_t begin = 0;             ///< start of the key, or of the element
  std::string key;                   ///< without escapes; empty for an element
  std::size_t colon = 0;             ///< its place; unused for an element
  std::optional<std::size_t> comma;  ///< the place of the comma after it, if there is one
  Node value;
};

/// Why a text is not a document, and where. Line and column count from 1; columns are characters.
struct Complaint {
  std::size_t line;
  std::size_t column;
  std::string what;  ///< "a comma or \"}\" is missing"
};

/// One step into a container: a member's key, or an element's index.
using Step = std::variant<std::string, std::size_t>;
using Path = std::vector<Step>;

/// The deepest nesting of containers. Deeper documents are refused.
inline constexpr std::size_t maximumDepth = 500;

class Document {
 public:
  /// The text must be UTF-8. A text with only white space and comments is a document without a
  /// root.
  static std::variant<Document, Complaint> read(std::string text);

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] const std::optional<Node>& root() const { return root_; }

  /// The value at the end of the path; null when there is none. If a key is repeated, the last
  /// member counts, as in other JSON readers.
  [[nodiscard]] const Node* at(std::span<const Step> path) const;

  /// The bytes of the value.
  [[nodiscard]] std::string_view textOf(const Node& node) const;

  /// A string without its quotes and escapes; absent for any other value.
  [[nodiscard]] std::optional<std::string> string(const Node& node) const;

  /// A complaint about the value, at its place.
  [[nodiscard]] Complaint complaint(const Node& node, std::string what) const;

 private:
  Document(std::string text, std::optional<Node> root)
      : text_(std::move(text)), root_(std::move(root)) {}

  std::string text_;
  std::optional<Node> root_;
};

/// The last member with that key; null when there is none.
const Item* find(const Node& object, std::string_view key);

/// Line and column of a place in a text.
Complaint complaintAt(std::string_view text, std::size_t place, std::string what);

}  // namespace quillstead::JSONC
