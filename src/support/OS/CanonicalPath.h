#pragma once

#include <optional>
#include <string>

namespace quillstead::OS {

/// The absolute path of what `path` names, every symbolic link followed; absent when there is no
/// such thing or it cannot be reached.
std::optional<std::string> canonicalPath(const std::string& path);

}  // namespace quillstead::OS
