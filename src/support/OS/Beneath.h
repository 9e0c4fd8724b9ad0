#pragma once

#include "support/OS/Descriptor.h"

#include <string>

namespace quillstead::OS {

/// Opens `path`, which is relative to `directory`, and only if it is below it. A step "..", an
/// absolute path or a symbolic link that leads out is refused with EXDEV, even if it appears during
/// the call. Links that stay below are followed, at most 40. `flags` are those of open(2) for an
/// existing file; the descriptor is closed on exec. Not open, with errno, on failure.
Descriptor openBeneath(const Descriptor& directory, const std::string& path, int flags);

/// The same, step by step, for systems without a call for it.
Descriptor walkBeneath(const Descriptor& directory, const std::string& path, int flags);

}  // namespace quillstead::OS
