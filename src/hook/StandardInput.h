#pragma once

#include <optional>
#include <string>

namespace quillstead::hook::StandardInput {

/// All of standard input; may be empty. Blocks until the harness closes it, without a limit of size
/// or time. Absent when it cannot be read.
std::optional<std::string> readAll();

}  // namespace quillstead::hook::StandardInput
