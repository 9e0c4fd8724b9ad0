#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// JSON as people write it: with comments (`//` and `/* */`), commas behind the last item, a byte
/// order mark, any indentation and any line ends. A document is its text, of which every byte
/// stays, and a tree that says where in it each value is.
namespace quillstead::JSONC {

enum class Kind { object, array, string, number, boolean, null };

struct Item;

/// A value's place in the text.
struct Node {
  Kind kind = Kind::null;
  std::size_t begin = 0;    ///< its first byte
  std::size_t end = 0;      ///< behind its last byte
  std::vector<Item> items;  ///< of an object or an array, in their order
};

/// A member of an object, or an element of an array.
struct Item {
  std::size_t begin = 0;             ///< of the key, or of the element
  std::string key;                   ///< without escapes; empty for an element
  std::size_t colon = 0;             ///< where it is; for an element nothing
  std::optional<std::size_t> comma;  ///< where the one behind it is; absent when there is none
  Node value;
};

/// Why a text is no document, and where: line and column count from 1, a column for each character.
struct Complaint {
  std::size_t line;
  std::size_t column;
  std::string what;  ///< "a comma or \"}\" is missing"
};

/// One step down: a member's key, or an element's number.
using Step = std::variant<std::string, std::size_t>;
using Path = std::vector<Step>;

/// Containers within containers, at most. What is deeper is refused.
inline constexpr std::size_t maximumDepth = 500;

class Document {
 public:
  /// The text must be UTF-8. One that holds nothing but white space and comments is a document
  /// without a root.
  static std::variant<Document, Complaint> read(std::string text);

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] const std::optional<Node>& root() const { return root_; }

  /// The value at the end of the path; null when there is none. Of members with the same key the
  /// last one counts, as it does for whoever reads the file.
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

/// The member of that key, the last of several; null when there is none.
const Item* find(const Node& object, std::string_view key);

/// Line and column of a place in a text.
Complaint complaintAt(std::string_view text, std::size_t place, std::string what);

}  // namespace quillstead::JSONC
