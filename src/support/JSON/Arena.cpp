#include "support/JSON/Arena.h"

#include "support/OS/LargeMemory.h"

namespace quillstead::JSON {

void Arena::add(std::size_t size) {
  // Left as it is, where make_unique would clear it.
  blocks_.push_back(std::unique_ptr<std::byte[]>(new std::byte[size]));
  left_ = {blocks_.back().get(), size};
  lastSize_ = size;
  OS::preferLargePages(left_);
}

}  // namespace quillstead::JSON
