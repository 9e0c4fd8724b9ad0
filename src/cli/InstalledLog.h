#pragma once

#include <string>

namespace quillstead::cli {

/// Where the hook's log goes once the harnesses are set up: where the hook puts it by itself, or,
/// on systems where it has no such place, into our directory for what programs keep.
std::string installedLog(const std::string& home, const std::string& stateDirectory);

/// Whether the hook has to be told of it.
bool isInstalledLogNamed();

}  // namespace quillstead::cli
