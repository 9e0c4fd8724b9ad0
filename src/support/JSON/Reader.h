#pragma once

#include "support/JSON/Arena.h"
#include "support/JSON/View.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace quillstead::JSON {

/// A document that was read. Owns everything its views point into, even after a move. The bytes
/// that it was read from are no longer needed.
class Document {
 public:
  /// `root` is an object or an array. It and its contents are in `memory`.
  Document(Arena memory, View root) : memory_(std::move(memory)), root_(root) {}

  [[nodiscard]] View root() const { return root_; }

  /// The members of the top-level object; none when it is an array.
  [[nodiscard]] ObjectView object() const { return root_.object().value_or(ObjectView()); }

 private:
  Arena memory_;
  View root_;
};

/// Objects and arrays may be nested this deep; a deeper document is refused.
inline constexpr std::size_t maximumDepth = 512;

/// Reads one whole JSON document whose top-level value is an object or an array.
///
/// The bytes are UTF-8, or UTF-16 or UTF-32 in either byte order, with or without a byte order
/// mark. Absent when they are not exactly one well-formed document: a top-level scalar, bytes after
/// the document other than white space, invalid UTF-8, a surrogate escape without its partner,
/// nesting deeper than `maximumDepth`, or more values than `mostValues`, keys counted too. (A value
/// takes some twenty times the memory of the two bytes that it may be in the document: limit them
/// where the document's writer is not trusted.)
std::optional<Document> read(std::string_view bytes,
                             std::size_t mostValues = std::numeric_limits<std::size_t>::max());

}  // namespace quillstead::JSON
