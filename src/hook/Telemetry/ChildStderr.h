#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::hook::ChildStderr {

/// One record with the end of what a failed server wrote to its standard error: at most 5 lines,
/// and 1,000 characters of them. Absent when it wrote nothing but white space. `status`: how the
/// server ended; absent when it was killed for its leash.
std::optional<std::string> record(std::string_view tool, std::string_view raw,
                                  std::optional<std::int32_t> status);

/// Passes that record, if any, on to our standard error.
void forward(std::string_view tool, std::string_view raw, std::optional<std::int32_t> status);

}  // namespace quillstead::hook::ChildStderr
