#pragma once

#include <optional>
#include <string>

namespace quillstead::OS {

/// The path of the running executable as the system tells it, links possibly not yet followed;
/// where the system cannot tell, the program's first argument; absent when there is not even that.
std::optional<std::string> ownExecutable();

}  // namespace quillstead::OS
