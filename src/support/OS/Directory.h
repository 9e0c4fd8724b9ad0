#pragma once

#include "support/OS/Descriptor.h"

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::OS {

/// Whether a symbolic link in the last place of a path is followed or refused.
enum class Links { followed, refused };

/// Opens a directory for reading. Not open when it does not exist or cannot be read.
Descriptor openDirectory(const std::string& path, Links links);

/// Calls `visit` with each name in the directory that ends in `suffix` and may be a regular file.
/// If the file system does not report types, it may be something else. The order is the file
/// system's. False when the directory could not be read to its end.
bool forEachName(const Descriptor& directory, std::string_view suffix,
                 const std::function<void(const char* name)>& visit);

/// Creates the directory and missing ones above it, with `mode` without the bits in the process's
/// mask. True when the directory exists afterwards.
bool makeDirectories(const std::string& path, mode_t mode);

/// Holds a lock on a directory for its lifetime; other processes that lock it wait. Does nothing on
/// file systems without such locks, such as some network file systems.
class Lock {
 public:
  explicit Lock(const Descriptor& directory);
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  ~Lock();

 private:
  int directory_;
};

}  // namespace quillstead::OS
