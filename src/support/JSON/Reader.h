#pragma once

#include "support/JSON/View.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::JSON {

/// Memory that is allocated in small parts and freed all at once. Moving the arena does not move
/// its contents.
class Arena {
 public:
  /// Starts with room for `size` bytes. Pages that are never written cost nothing.
  explicit Arena(std::size_t size) { add(size); }

  /// `size` bytes, uninitialised, aligned for every type.
  void* take(std::size_t size) {
    size = (size + alignment - 1) / alignment * alignment;
    if (size > left_.size()) add(std::max(2 * lastSize_, size));
    const std::span<std::byte> taken = left_.first(size);
    left_ = left_.subspan(size);
    return taken.data();
  }

  /// A copy of `items`, whose type needs no destructor.
  template <typename Item>
  std::span<const Item> copy(std::span<const Item> items) {
    Item* const copied = static_cast<Item*>(take(items.size_bytes()));
    std::uninitialized_copy(items.begin(), items.end(), copied);
    return {copied, items.size()};
  }

 private:
  static constexpr std::size_t alignment = alignof(std::max_align_t);

  void add(std::size_t size);

  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::span<std::byte> left_;  ///< of the last block
  std::size_t lastSize_ = 0;
};

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
