#include "support/OS/AtomicFile.h"

#include "support/OS/Directory.h"
#include "support/OS/ExclusiveRename.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <random>
#include <vector>

namespace quillstead::OS::AtomicFile {

namespace {

constexpr std::string_view temporaryPrefix = ".quillstead-new-";
constexpr std::string_view temporarySuffix = ".tmp";

std::string temporaryName() {
  std::random_device random;
  return std::string(temporaryPrefix) + std::to_string(getpid()) + '-' + std::to_string(random()) +
         std::string(temporarySuffix);
}

/// Writes a file that nobody knows of yet; false with errno when that failed.
bool writeNew(const Descriptor& directory, const std::string& name, std::string_view bytes) {
  constexpr mode_t mode = 0644;
  constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
  const Descriptor file(openat(directory.number(), name.c_str(), flags, mode));
  return file.isOpen() && writeAll(file.number(), bytes) && fsync(file.number()) == 0;
}

}  // namespace

Outcome create(const Descriptor& directory, const std::string& name, std::string_view bytes) {
  if (faccessat(directory.number(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
    return Outcome::exists;  // spares the writing; the renaming below decides
  }
  const std::string temporary = temporaryName();
  int error = 0;
  if (!writeNew(directory, temporary, bytes)) {
    error = errno;
  } else {
    error = renameExclusively(directory, temporary.c_str(), name.c_str());
  }
  if (error == 0) {
    fsync(directory.number());  // the file stands either way; this only makes its name durable
    return Outcome::created;
  }
  unlinkat(directory.number(), temporary.c_str(), 0);
  errno = error;
  return error == EEXIST ? Outcome::exists : Outcome::failed;
}

void removeLeftovers(const Descriptor& directory) {
  using namespace std::chrono;
  const auto hourAgo = system_clock::now() - hours(1);
  std::vector<std::string> leftovers;
  forEachFile(directory, temporarySuffix, [&](std::string_view name, FileStamp stamp) {
    if (name.starts_with(temporaryPrefix) &&
        nanoseconds(stamp.modified) < hourAgo.time_since_epoch()) {
      leftovers.emplace_back(name);
    }
  });
  for (const std::string& name : leftovers) unlinkat(directory.number(), name.c_str(), 0);
}

}  // namespace quillstead::OS::AtomicFile
