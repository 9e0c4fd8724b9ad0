#include "support/OS/HomeDirectory.h"

#include <pwd.h>
#include <unistd.h>

namespace quillstead::OS {

std::string homeDirectory() {
  const passwd* const entry = getpwuid(getuid());
  return entry && entry->pw_dir ? entry->pw_dir : "";
}

}  // namespace quillstead::OS
