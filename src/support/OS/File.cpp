#include "support/OS/File.h"

#include "support/OS/Beneath.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace quillstead::OS {

namespace {

NoContent reasonNotOpened(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
    case EINVAL:
      return NoContent::missing;
    case ELOOP:
    case EXDEV:
      return NoContent::symbolicLink;
    case ENXIO:
    case EOPNOTSUPP:  // a socket, on macOS
    case ENODEV:
      return NoContent::notAFile;
    default:
      return NoContent::unreadable;
  }
}

/// Reads up to `limit` bytes into `bytes`; false on failure.
bool readUpTo(int descriptor, std::size_t limit, std::size_t expected, std::string& bytes) {
  // One byte more than expected, so that one read also finds the end.
  bytes.resize(std::min(expected, limit) + 1);
  std::size_t filled = 0;
  for (;;) {
    if (filled == bytes.size()) bytes.resize(std::min(bytes.size() * 2, limit + 1));
    if (filled == bytes.size()) return true;
    const std::size_t room = bytes.size() - filled;
    const Transfer part = read(descriptor, bytes.data() + filled, room);
    if (part.result == Transfer::Result::ended) break;
    if (part.result != Transfer::Result::moved) return false;
    filled += part.count;
    if (part.count < room && filled == expected)
      break;  // a regular file gives less at its end only
  }
  bytes.resize(filled);
  return true;
}

constexpr int flagsToRead = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

/// `file`: the result of opening it; when not open, errno says why.
std::variant<FileContent, NoContent> contentOf(const Descriptor& file, std::size_t limit) {
  if (!file.isOpen()) return reasonNotOpened(errno);

  struct stat status {};
  if (fstat(file.number(), &status) != 0) return NoContent::unreadable;
  if (!S_ISREG(status.st_mode)) return NoContent::notAFile;
  const FileStamp stamp = fileStamp(status);
  const auto size = static_cast<std::size_t>(stamp.size);
  if (size > limit) return NoContent::tooLarge;

  std::string bytes;
  if (!readUpTo(file.number(), limit, size, bytes)) return NoContent::unreadable;
  if (bytes.size() > limit) return NoContent::tooLarge;  // it grew while we read
  return FileContent{.bytes = std::move(bytes), .stamp = stamp, .ownership = ownershipOf(status)};
}

}  // namespace

std::optional<FileState> stateOf(const Descriptor& directory, const char* name) {
  struct stat status {};
  if (fstatat(directory.number(), name, &status, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) return std::nullopt;
  return FileState{.stamp = fileStamp(status), .ownership = ownershipOf(status)};
}

std::optional<FileStamp> stampOf(const Descriptor& directory, const char* name) {
  const auto state = stateOf(directory, name);
  return state ? std::optional(state->stamp) : std::nullopt;
}

std::variant<FileContent, NoContent> readFile(const Descriptor& directory, const std::string& name,
                                              std::size_t limit) {
  constexpr int flags = flagsToRead | O_NOFOLLOW;
  return contentOf(Descriptor(openat(directory.number(), name.c_str(), flags)), limit);
}

std::variant<FileContent, NoContent> readFileBeneath(const Descriptor& directory,
                                                     const std::string& path, std::size_t limit) {
  return contentOf(openBeneath(directory, path, flagsToRead), limit);
}

}  // namespace quillstead::OS
