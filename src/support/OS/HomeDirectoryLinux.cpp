#include "support/OS/HomeDirectory.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

namespace quillstead::OS {

// The file itself is read: the system's look-up loads shared modules, which a static program lacks.
std::string homeDirectory() {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> database(std::fopen("/etc/passwd", "re"),
                                                                 std::fclose);
  if (!database) return {};
  while (const passwd* entry = fgetpwent(database.get())) {
    if (entry->pw_uid == getuid()) return entry->pw_dir;
  }
  return {};
}

}  // namespace quillstead::OS
