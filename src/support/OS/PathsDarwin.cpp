#include "support/OS/Paths.h"

#include <crt_externs.h>
#include <libproc.h>
#include <mach-o/dyld.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdint>

namespace quillstead::OS {

std::optional<std::string> ownExecutable() {
  std::array<char, 1025> path{};
  std::uint32_t capacity = path.size() - 1;
  if (_NSGetExecutablePath(path.data(), &capacity) == 0) return path.data();

  // Longer than the buffer: the kernel knows the path of the main executable too.
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> longPath{};
  if (proc_pidpath(getpid(), longPath.data(), longPath.size()) > 0) return longPath.data();

  const char* const firstArgument = **_NSGetArgv();
  return firstArgument && *firstArgument ? std::optional<std::string>(firstArgument) : std::nullopt;
}

std::string homeDirectory() {
  const passwd* const entry = getpwuid(getuid());
  return entry && entry->pw_dir ? entry->pw_dir : "";
}

std::string_view cacheDirectoryInHome() { return "Library/Caches"; }

}  // namespace quillstead::OS
