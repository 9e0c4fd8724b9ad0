#include "support/OS/LargeMemory.h"

namespace quillstead::OS {

void preferLargePages(std::span<std::byte> /*memory*/) {}

}  // namespace quillstead::OS
