#pragma once

#include <optional>
#include <string>

namespace quillstead::OS {

/// The path of the running executable as the system tells it, links possibly not yet followed;
/// absent when the system cannot tell.
std::optional<std::string> ownExecutable();

}  // namespace quillstead::OS
