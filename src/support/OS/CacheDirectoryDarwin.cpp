#include "support/OS/CacheDirectory.h"

namespace quillstead::OS {

std::string_view cacheDirectoryInHome() { return "Library/Caches"; }

}  // namespace quillstead::OS
