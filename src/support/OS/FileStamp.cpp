#include "support/OS/FileStamp.h"

#include <unistd.h>

namespace quillstead::OS {

Ownership ownershipOf(const struct stat& status) {
  if (!S_ISLNK(status.st_mode) && (status.st_mode & S_IWOTH) != 0) return Ownership::everybodys;
  static const uid_t user = geteuid();  // asked once: a store has thousands of files
  return status.st_uid == user ? Ownership::ours : Ownership::someoneElses;
}

}  // namespace quillstead::OS
