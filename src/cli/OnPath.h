#pragma once

#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead::cli {

/// The absolute path of the program with that name on PATH; absent when there is none.
std::optional<std::string> onPath(std::string_view name, const OS::Environment& environment);

}  // namespace quillstead::cli
