#pragma once

#include <string_view>

namespace quillstead::OS {

/// Where programs keep what they can make again, relative to the home directory.
std::string_view cacheDirectoryInHome();

}  // namespace quillstead::OS
