#pragma once

#include "support/OS/Descriptor.h"
#include "support/OS/FileStamp.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::OS {

/// Whether a symbolic link in the last place of a path is followed or refused.
enum class Links { followed, refused };

/// Opens a directory for looking into it; not open when there is none or it may not be read.
Descriptor openDirectory(const std::string& path, Links links);

/// Calls `visit` with each name in the directory that ends in `suffix` and may be a regular file's;
/// where the file system does not say what a name stands for, it may be something else. The order
/// is the file system's. False when the directory could not be read to its end.
bool forEachName(const Descriptor& directory, std::string_view suffix,
                 const std::function<void(const char* name)>& visit);

/// What a file is without a look into it.
struct FileState {
  FileStamp stamp;
  Ownership ownership;
};

/// The state of the regular file `name` in the directory; absent when there is none. Symbolic links
/// are not followed.
std::optional<FileState> stateOf(const Descriptor& directory, const char* name);
std::optional<FileStamp> stampOf(const Descriptor& directory, const char* name);

/// Makes the directory and those above it that are missing, each with `mode` less the process's
/// mask. True when the directory is there afterwards.
bool makeDirectories(const std::string& path, mode_t mode);

/// Keeps other processes that lock the same directory waiting for its lifetime. Where the file
/// system has no such locks, as some that are shared between machines, it does nothing.
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
