#pragma once

#include "support/OS/Environment.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The pre-tool answer for Cursor: calls of the memory service's own tools carry the session that
/// makes them.
namespace quillstead::SessionStamp {

/// The tools that are stamped, by the names under which Cursor reports them.
inline constexpr std::array<std::string_view, 3> tools{"MCP:grab", "MCP:memory_add",
                                                       "MCP:meeting_get"};

/// The tool argument that carries the session.
inline constexpr std::string_view key = "_quillstead_session";

/// Answers the pre-tool slot. Returns the exit status, always 0.
std::int32_t serve(const OS::Environment& environment);

/// The answer document to a payload's bytes; absent when the call goes through unchanged. A call of
/// "Task" gets the parent tag instead of the stamp.
std::optional<std::string> answer(std::string input);

}  // namespace quillstead::SessionStamp
