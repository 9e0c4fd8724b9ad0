#pragma once

#include "support/OS/Environment.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The pre-tool answer for every harness but Cursor: calls that a sub-agent makes of the memory
/// service's own tools carry its identifier.
namespace quillstead::SubagentStamp {

/// What the names of the memory service's tools begin with.
inline constexpr std::string_view toolPrefix = "mcp__quillstead__";

/// The tool argument that carries the sub-agent.
inline constexpr std::string_view key = "_quillstead_subagent";

/// Answers the pre-tool slot. Returns the exit status, always 0.
std::int32_t serve(const OS::Environment& environment);

/// The answer document to a payload's bytes; absent when the call goes through unchanged, as every
/// call of the main agent does.
std::optional<std::string> answer(std::string input);

}  // namespace quillstead::SubagentStamp
