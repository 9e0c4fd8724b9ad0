#pragma once

#include "support/OS/Descriptor.h"

#include <sys/types.h>

/// Files that have no name while they are written: a process that is killed meanwhile leaves
/// nothing behind.
namespace quillstead::OS::NamelessFile {

/// Opens a new file for writing that will lie in `directory`. Not open where the system or the file
/// system has no such files.
Descriptor create(const Descriptor& directory, mode_t mode);

/// Gives the file a name in the directory. Gives 0 or the error number, EEXIST when it is taken.
int giveName(const Descriptor& file, const Descriptor& directory, const char* name);

}  // namespace quillstead::OS::NamelessFile
