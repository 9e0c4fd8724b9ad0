#pragma once

#include "support/OS/Descriptor.h"

namespace quillstead::OS {

/// Renames a file within `directory` unless the new name is taken; in one step where the system and
/// the file system can do that, else as a link and the removal of the old name. Gives 0 or the
/// error number, EEXIST when the name is taken.
int renameExclusively(const Descriptor& directory, const char* from, const char* to);

}  // namespace quillstead::OS
