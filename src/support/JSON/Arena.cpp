#include "support/JSON/Arena.h"

#include "support/OS/LargeMemory.h"

namespace quillstead::JSON {

void Arena::add(std::size_t size) {
  // Not cleared, as make_unique would do.
  blocks_.push_back(std::unique_ptr<std::byte[]>(new std::byte[size]));
  left_ = {blocks_.back().get(), size};
  lastSize_ = size;
  OS::preferLargePages(left_);
}

}  // namespace quillstead::JSON
