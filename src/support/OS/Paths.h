#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Paths that the system knows.
namespace quillstead::OS {

/// The absolute path of what `path` names, every symbolic link followed; absent when there is no
/// such thing or it cannot be reached.
std::optional<std::string> canonicalPath(const std::string& path);

/// The path of the running executable from the system; it may contain links. If the system does not
/// know it, the program's first argument; absent when that is missing too.
std::optional<std::string> ownExecutable();

/// The home directory that the user database gives for the process's user; empty when it has none.
std::string homeDirectory();

/// Where programs keep what they can make again, relative to the home directory.
std::string_view cacheDirectoryInHome();

}  // namespace quillstead::OS
