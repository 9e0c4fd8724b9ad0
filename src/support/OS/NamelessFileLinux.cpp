#include "support/OS/FileMode.h"
#include "support/OS/NamelessFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace quillstead::OS::NamelessFile {

namespace {

// The only way to give a file a name that needs no privilege.
constexpr const char* openFiles = "/proc/self/fd";

}  // namespace

Descriptor create(const Descriptor& directory) {
  if (access(openFiles, X_OK) != 0) return {};
  return Descriptor(
      openat(directory.number(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, FileMode::privateFile));
}

int giveName(const Descriptor& file, const Descriptor& directory, const char* name) {
  const std::string path = std::string(openFiles) + "/" + std::to_string(file.number());
  const int result = linkat(AT_FDCWD, path.c_str(), directory.number(), name, AT_SYMLINK_FOLLOW);
  return result == 0 ? 0 : errno;
}

}  // namespace quillstead::OS::NamelessFile
