#pragma once

#include "support/OS/Descriptor.h"

#include <cstdint>
#include <optional>

namespace quillstead::OS {

/// A number that changes with every name in the directory that is added, removed, or given to
/// another file; what happens within a file does not show in it. Absent where the system or the
/// file system is not known to keep that promise, and while the last change is so recent that
/// another could leave the number as it is.
std::optional<std::uint64_t> namesStamp(const Descriptor& directory);

}  // namespace quillstead::OS
