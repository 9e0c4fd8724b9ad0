#pragma once

#include "support/OS/Descriptor.h"

#include <sys/stat.h>

#include <cstdint>
#include <optional>

/// What a file or directory is, without a look into it.
namespace quillstead::OS {

/// What tells one state of a file from another without reading it.
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

/// Whose word a file or directory is.
enum class Ownership {
  ours,          ///< of the user this process works for; a group may write it too
  someoneElses,  ///< of another user
  everybodys,    ///< any user can write to it, whoever owns it
};

/// A symbolic link's own permissions say nothing, so it is never everybody's.
Ownership ownershipOf(const struct stat& status);

}  // namespace quillstead::OS
