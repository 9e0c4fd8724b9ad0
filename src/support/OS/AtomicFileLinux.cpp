#include "support/OS/AtomicFile.h"
#include "support/OS/File.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace quillstead::OS {

namespace {

constexpr unsigned int replaceNothing = 1;  // RENAME_NOREPLACE, which not every C library names

}  // namespace

std::optional<int> renameInOneStep(const Descriptor& directory, const char* from, const char* to) {
  const int number = directory.number();
  if (syscall(SYS_renameat2, number, from, number, to, replaceNothing) == 0) return 0;
  if (errno == EINVAL || errno == ENOSYS) return std::nullopt;
  return errno;
}

}  // namespace quillstead::OS

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
