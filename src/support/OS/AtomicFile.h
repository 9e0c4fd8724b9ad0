#pragma once

#include "support/OS/Descriptor.h"

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

/// Creates files atomically.
namespace quillstead::OS::AtomicFile {

enum class Outcome {
  created,
  exists,  ///< the name was taken; nothing was changed
  failed,  ///< no file was created; `errno` says why
};

inline constexpr mode_t forAll = 0644;
inline constexpr mode_t asTheMaskSays = 0666;

/// Creates the file `name` in `directory` with these bytes and this mode, without the bits in the
/// process's mask. Readers see no file or all of it, even if the process is killed. If several
/// processes create the same name at once, exactly one succeeds. The bytes are synced before the
/// name exists, so a system crash leaves no incomplete file. After a loss of power that depends on
/// the disk; on macOS it may still have the bytes in its cache.
Outcome create(const Descriptor& directory, const std::string& name, std::string_view bytes,
               mode_t mode = forAll);

/// The same, but replaces an existing file. False on failure; `errno` says why.
bool replace(const Descriptor& directory, const std::string& name, std::string_view bytes,
             mode_t mode);

/// Removes incomplete files of killed processes from `directory` after an hour.
void removeLeftovers(const Descriptor& directory);

}  // namespace quillstead::OS::AtomicFile

namespace quillstead::OS {

/// Renames a file within `directory` unless the new name is taken. It is one step where the file
/// system supports that, else a link and the removal of the old name. Returns 0 or the error
/// number; EEXIST when the name is taken.
int renameExclusively(const Descriptor& directory, const char* from, const char* to);

/// The one step alone, which each platform has in its own way. Absent when the system or the file
/// system does not support it.
std::optional<int> renameInOneStep(const Descriptor& directory, const char* from, const char* to);

}  // namespace quillstead::OS

/// Files that have no name while they are written: a process that is killed meanwhile leaves
/// nothing behind.
namespace quillstead::OS::NamelessFile {

/// Opens a new file for writing that will lie in `directory`, for its user alone (mode 0600). Not
/// open where the system or the file system has no such files.
Descriptor create(const Descriptor& directory);

/// Gives the file a name in the directory. Returns 0 or the error number: EEXIST when the name is
/// taken.
int giveName(const Descriptor& file, const Descriptor& directory, const char* name);

}  // namespace quillstead::OS::NamelessFile
