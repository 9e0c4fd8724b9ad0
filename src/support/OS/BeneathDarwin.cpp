#include "support/OS/Beneath.h"

namespace quillstead::OS {

Descriptor openBeneath(const Descriptor& directory, const std::string& path, int flags) {
  return walkBeneath(directory, path, flags);
}

}  // namespace quillstead::OS
