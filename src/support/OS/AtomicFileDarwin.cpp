#include "support/OS/AtomicFile.h"

#include <cerrno>
#include <cstdio>

namespace quillstead::OS {

std::optional<int> renameInOneStep(const Descriptor& directory, const char* from, const char* to) {
  const int number = directory.number();
  if (renameatx_np(number, from, number, to, RENAME_EXCL) == 0) return 0;
  if (errno == ENOTSUP || errno == EINVAL) return std::nullopt;
  return errno;
}

}  // namespace quillstead::OS

namespace quillstead::OS::NamelessFile {

Descriptor create(const Descriptor& /*directory*/) { return {}; }

int giveName(const Descriptor& /*file*/, const Descriptor& /*directory*/, const char* /*name*/) {
  return ENOTSUP;
}

}  // namespace quillstead::OS::NamelessFile
