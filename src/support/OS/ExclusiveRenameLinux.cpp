#include "support/OS/ExclusiveRename.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace quillstead::OS {

namespace {

constexpr unsigned int replaceNothing = 1;  // RENAME_NOREPLACE, which not every C library names

}  // namespace

int renameExclusively(const Descriptor& directory, const char* from, const char* to) {
  const int number = directory.number();
  if (syscall(SYS_renameat2, number, from, number, to, replaceNothing) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  if (linkat(number, from, number, to, 0) != 0) return errno;
  unlinkat(number, from, 0);
  return 0;
}

}  // namespace quillstead::OS
