#pragma once

#include <sys/stat.h>

namespace quillstead::OS {

/// Whose word a file or directory is.
enum class Ownership {
  ours,          ///< of the user this process works for; a group may write it too
  someoneElses,  ///< of another user
  everybodys,    ///< whoever it belongs to, everybody may write it
};

/// A symbolic link's own permissions say nothing, so it is never everybody's.
Ownership ownershipOf(const struct stat& status);

}  // namespace quillstead::OS
