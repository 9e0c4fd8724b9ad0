#pragma once

#include <sys/types.h>

/// Permissions of what nobody but its user may read.
namespace quillstead::OS::FileMode {

inline constexpr mode_t privateFile = 0600;
inline constexpr mode_t privateDirectory = 0700;

}  // namespace quillstead::OS::FileMode
