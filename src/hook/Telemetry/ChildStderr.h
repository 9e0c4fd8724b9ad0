#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::hook::ChildStderr {

/// A message with the end of a failed server's standard error: at most 5 lines and 1,000
/// characters. Absent when that is only white space. `status`: the server's exit status; absent
/// when it was killed because its leash ran out.
std::optional<std::string> record(std::string_view tool, std::string_view raw,
                                  std::optional<std::int32_t> status);

/// Writes that message, if there is one, to our standard error.
void forward(std::string_view tool, std::string_view raw, std::optional<std::int32_t> status);

}  // namespace quillstead::hook::ChildStderr
