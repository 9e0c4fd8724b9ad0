#pragma once

#include "support/OS/Descriptor.h"

namespace quillstead::OS {

/// Renames a file within `directory` unless the new name is taken. It is one step where the file
/// system supports that, else a link and the removal of the old name. Returns 0 or the error
/// number; EEXIST when the name is taken.
int renameExclusively(const Descriptor& directory, const char* from, const char* to);

}  // namespace quillstead::OS
