#pragma once

#include <string>

namespace quillstead::OS {

/// The home directory that the user database gives for the process's user; empty when it has none.
std::string homeDirectory();

}  // namespace quillstead::OS
