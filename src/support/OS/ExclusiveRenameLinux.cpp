#include "support/OS/ExclusiveRename.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace quillstead::OS {

int renameExclusively(const Descriptor& directory, const char* from, const char* to) {
  const int number = directory.number();
  if (renameat2(number, from, number, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  if (linkat(number, from, number, to, 0) != 0) return errno;
  unlinkat(number, from, 0);
  return 0;
}

}  // namespace quillstead::OS
