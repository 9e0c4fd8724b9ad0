#pragma once

#include "support/OS/Descriptor.h"

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

/// Files: their state, their content and their permissions.
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

/// The state of a file without its content.
struct FileState {
  FileStamp stamp;
  Ownership ownership;
};

/// The state of the regular file `name` in the directory; absent when there is none. Symbolic links
/// are not followed.
std::optional<FileState> stateOf(const Descriptor& directory, const char* name);
std::optional<FileStamp> stampOf(const Descriptor& directory, const char* name);

/// A file's bytes, and its state when they were read.
struct FileContent {
  std::string bytes;
  FileStamp stamp;
  Ownership ownership;
};

enum class NoContent {
  missing,
  symbolicLink,  ///< a link that was not followed
  notAFile,      ///< a directory, a pipe, a device
  tooLarge,
  unreadable,  ///< no permission, or an error while reading
};

/// Reads the whole file `name` in `directory` if it is a regular file of at most `limit` bytes.
/// Never follows a symbolic link in the last place and never waits.
std::variant<FileContent, NoContent> readFile(const Descriptor& directory, const std::string& name,
                                              std::size_t limit);

/// The same for a file below `directory`; symbolic links are followed if they stay below it.
std::variant<FileContent, NoContent> readFileBeneath(const Descriptor& directory,
                                                     const std::string& path, std::size_t limit);

/// Permissions of what nobody but its user may read.
namespace FileMode {

inline constexpr mode_t privateFile = 0600;
inline constexpr mode_t privateDirectory = 0700;

}  // namespace FileMode

}  // namespace quillstead::OS
