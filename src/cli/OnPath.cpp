#include "cli/OnPath.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace quillstead::cli {

std::optional<std::string> onPath(std::string_view name, const OS::Environment& environment) {
  std::string_view rest = environment.value("PATH").value_or("");
  while (!rest.empty()) {
    const std::string_view directory = rest.substr(0, rest.find(':'));
    rest.remove_prefix(std::min(rest.size(), directory.size() + 1));
    std::string candidate = std::string(directory).append("/").append(name);
    struct stat status {};
    const bool isProgram = directory.starts_with('/') && stat(candidate.c_str(), &status) == 0 &&
                           S_ISREG(status.st_mode) && access(candidate.c_str(), X_OK) == 0;
    if (isProgram) return candidate;
  }
  return std::nullopt;
}

}  // namespace quillstead::cli
