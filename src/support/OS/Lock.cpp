#include "support/OS/Lock.h"

#include <sys/file.h>

#include <cerrno>

namespace quillstead::OS {

Lock::Lock(const Descriptor& directory) : directory_(directory.number()) {
  while (flock(directory_, LOCK_EX) != 0 && errno == EINTR) {
  }
}

Lock::~Lock() { flock(directory_, LOCK_UN); }

}  // namespace quillstead::OS
