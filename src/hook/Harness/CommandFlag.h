#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace quillstead::hook::CommandFlag {

/// The value of `flag`, given as the next argument or after "=". Only the first occurrence of the
/// flag counts. Absent when the flag is not given, or its value is missing or empty.
std::optional<std::string_view> value(std::string_view flag, std::span<char* const> arguments);

}  // namespace quillstead::hook::CommandFlag
