#pragma once

#include "support/OS/Descriptor.h"

#include <string>

namespace quillstead::OS {

/// Opens `path`, which is relative to `directory`, and never anything that is not below it: a step
/// "..", an absolute path or a symbolic link that leads out is refused with EXDEV, also when
/// somebody puts it there meanwhile. Links that stay below are followed, at most 40. `flags` are
/// those of open(2) for something that is there; the descriptor is closed on exec. Not open, with
/// errno, when that failed.
Descriptor openBeneath(const Descriptor& directory, const std::string& path, int flags);

/// The same, one step of the path after another: for systems that have no call for it.
Descriptor walkBeneath(const Descriptor& directory, const std::string& path, int flags);

}  // namespace quillstead::OS
