#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
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

}  // namespace quillstead::JSON
