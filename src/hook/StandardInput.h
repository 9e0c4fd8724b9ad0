#pragma once

#include <optional>
#include <string>

namespace quillstead::hook::StandardInput {

/// Everything on standard input up to its end, which may be nothing. Blocks until the harness
/// closes it; no limit of size or time. Absent when it cannot be read.
std::optional<std::string> readAll();

}  // namespace quillstead::hook::StandardInput
