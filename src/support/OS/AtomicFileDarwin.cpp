#include "support/OS/AtomicFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace quillstead::OS {

int renameExclusively(const Descriptor& directory, const char* from, const char* to) {
  const int number = directory.number();
  if (renameatx_np(number, from, number, to, RENAME_EXCL) == 0) return 0;
  if (errno != ENOTSUP && errno != EINVAL) return errno;
  if (linkat(number, from, number, to, 0) != 0) return errno;
  unlinkat(number, from, 0);
  return 0;
}

}  // namespace quillstead::OS

namespace quillstead::OS::NamelessFile {

Descriptor create(const Descriptor& /*directory*/) { return {}; }

int giveName(const Descriptor& /*file*/, const Descriptor& /*directory*/, const char* /*name*/) {
  return ENOTSUP;
}

}  // namespace quillstead::OS::NamelessFile
