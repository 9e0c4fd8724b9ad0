#pragma once

#include "support/OS/Descriptor.h"
#include "support/OS/FileStamp.h"

#include <cstddef>
#include <string>
#include <variant>

namespace quillstead::OS {

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

}  // namespace quillstead::OS
