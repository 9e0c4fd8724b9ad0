#pragma once

#include "support/OS/Descriptor.h"

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
