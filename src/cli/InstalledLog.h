#pragma once

#include <string>

namespace quillstead::cli {

/// Where the hook's log goes when install has set the harnesses up: the hook's default place, or,
/// on systems where it has none, our state directory.
std::string installedLog(const std::string& home, const std::string& stateDirectory);

/// Whether the settings have to name it for the hook.
bool isInstalledLogNamed();

}  // namespace quillstead::cli
