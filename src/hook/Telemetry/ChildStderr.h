#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::ChildStderr {

/// Passes the end of what a failed server wrote to its standard error (at most 5 lines and 1,000
/// characters of it) on to ours, in one record; nothing when it is blank.
/// `status`: how the server ended; absent when it was killed for its leash.
void forward(std::string_view tool, std::string raw, std::optional<std::int32_t> status);

}  // namespace quillstead::ChildStderr
