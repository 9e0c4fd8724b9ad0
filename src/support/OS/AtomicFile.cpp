#include "support/OS/AtomicFile.h"

#include "support/OS/Directory.h"
#include "support/OS/File.h"
#include "support/OS/Random.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <vector>

namespace quillstead::OS::AtomicFile {

namespace {

constexpr std::string_view temporaryPrefix = ".quillstead-new-";
constexpr std::string_view temporarySuffix = ".tmp";

std::string temporaryName() {
  return std::string(temporaryPrefix) + std::to_string(getpid()) + '-' +
         std::to_string(randomNumber()) + std::string(temporarySuffix);
}

/// Writes a file under a temporary name; false, with errno, on failure.
bool writeNew(const Descriptor& directory, const std::string& name, std::string_view bytes,
              mode_t mode) {
  constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
  const Descriptor file(openat(directory.number(), name.c_str(), flags, mode));
  return file.isOpen() && writeAll(file.number(), bytes) && fsync(file.number()) == 0;
}

/// Writes a file under a temporary name, then calls `rename` to give it its final name. Returns 0
/// or the error number.
template <typename Rename>
int written(const Descriptor& directory, std::string_view bytes, mode_t mode, Rename rename) {
  const std::string temporary = temporaryName();
  const int error = writeNew(directory, temporary, bytes, mode) ? rename(temporary.c_str()) : errno;
  if (error == 0) {
    fsync(directory.number());  // makes the name durable; the file is complete without it
  } else {
    unlinkat(directory.number(), temporary.c_str(), 0);
  }
  return error;
}

}  // namespace

Outcome create(const Descriptor& directory, const std::string& name, std::string_view bytes,
               mode_t mode) {
  if (faccessat(directory.number(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
    return Outcome::exists;  // saves the write; the rename below decides
  }
  const int error = written(directory, bytes, mode, [&](const char* temporary) {
    return renameExclusively(directory, temporary, name.c_str());
  });
  if (error == 0) return Outcome::created;
  errno = error;
  return error == EEXIST ? Outcome::exists : Outcome::failed;
}

bool replace(const Descriptor& directory, const std::string& name, std::string_view bytes,
             mode_t mode) {
  const int place = directory.number();
  const int error = written(directory, bytes, mode, [&](const char* temporary) {
    return renameat(place, temporary, place, name.c_str()) == 0 ? 0 : errno;
  });
  errno = error;
  return error == 0;
}

void removeLeftovers(const Descriptor& directory) {
  using namespace std::chrono;
  const auto hourAgo = system_clock::now() - hours(1);
  std::vector<std::string> leftovers;
  forEachName(directory, temporarySuffix, [&](const char* name) {
    if (!std::string_view(name).starts_with(temporaryPrefix)) return;
    const auto stamp = stampOf(directory, name);
    if (stamp && nanoseconds(stamp->modified) < hourAgo.time_since_epoch()) {
      leftovers.emplace_back(name);
    }
  });
  for (const std::string& name : leftovers) unlinkat(directory.number(), name.c_str(), 0);
}

}  // namespace quillstead::OS::AtomicFile

namespace quillstead::OS {

int renameExclusively(const Descriptor& directory, const char* from, const char* to) {
  if (const auto error = renameInOneStep(directory, from, to)) return *error;
  const int number = directory.number();
  if (linkat(number, from, number, to, 0) != 0) return errno;
  unlinkat(number, from, 0);
  return 0;
}

}  // namespace quillstead::OS
