#include "support/OS/NamelessFile.h"

#include <cerrno>

namespace quillstead::OS::NamelessFile {

Descriptor create(const Descriptor& /*directory*/) { return {}; }

int giveName(const Descriptor& /*file*/, const Descriptor& /*directory*/, const char* /*name*/) {
  return ENOTSUP;
}

}  // namespace quillstead::OS::NamelessFile
