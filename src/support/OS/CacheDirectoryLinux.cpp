#include "support/OS/CacheDirectory.h"

namespace quillstead::OS {

std::string_view cacheDirectoryInHome() { return ".cache"; }

}  // namespace quillstead::OS
