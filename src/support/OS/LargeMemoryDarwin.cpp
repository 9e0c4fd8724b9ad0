#include "support/OS/LargeMemory.h"

namespace quillstead::OS {

void preferLargePages(char* /*start*/, std::size_t /*size*/) {}

}  // namespace quillstead::OS
