#include "support/OS/Paths.h"

#include <array>
#include <climits>
#include <cstdlib>

namespace quillstead::OS {

std::optional<std::string> canonicalPath(const std::string& path) {
  if (path.find('\0') != std::string::npos) return std::nullopt;
  std::array<char, PATH_MAX> canonical;
  if (!realpath(path.c_str(), canonical.data())) return std::nullopt;
  return canonical.data();
}

}  // namespace quillstead::OS
