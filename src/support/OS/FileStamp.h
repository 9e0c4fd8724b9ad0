#pragma once

#include "support/OS/Descriptor.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <optional>

/// The state of a file or directory, without reading it.
namespace quillstead::OS {

/// A file's size and time, by which a change shows without reading the file.
struct FileStamp {
  std::int64_t size;      ///< bytes
  std::int64_t modified;  ///< nanoseconds since 1970, as fine as the file system keeps them

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

FileStamp fileStamp(const struct stat& status);

/// A number that changes when a name in the directory is added, removed, or given to another file.
/// It does not change with the content of a file. Absent where the file system is not known to
/// guarantee this, and when the last change is so recent that another one could leave the number
/// unchanged.
std::optional<std::uint64_t> namesStamp(const Descriptor& directory);

/// Who may have written a file or directory.
enum class Ownership {
  ours,          ///< the user this process works for; a group may have write permission too
  someoneElses,  ///< another user owns it
  everybodys,    ///< any user can write to it, whoever owns it
};

/// A symbolic link is never `everybodys`, because its own permissions mean nothing.
inline Ownership ownershipOf(const struct stat& status) {
  if (!S_ISLNK(status.st_mode) && (status.st_mode & S_IWOTH) != 0) return Ownership::everybodys;
  static const uid_t user = geteuid();  // asked once: a store has thousands of files
  return status.st_uid == user ? Ownership::ours : Ownership::someoneElses;
}

}  // namespace quillstead::OS
