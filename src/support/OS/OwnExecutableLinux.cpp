#include "support/OS/OwnExecutable.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

namespace quillstead::OS {

std::optional<std::string> ownExecutable() {
  std::array<char, PATH_MAX> path{};
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  if (length > 0 && static_cast<std::size_t>(length) < path.size()) {
    return std::string(path.data(), static_cast<std::size_t>(length));
  }
  const std::string firstArgument = program_invocation_name;
  return firstArgument.empty() ? std::nullopt : std::optional(firstArgument);
}

}  // namespace quillstead::OS
