#pragma once

#include "contract/Contract.h"
#include "hook/Harness/CommandFlag.h"
#include "support/JSON/Value.h"

#include <array>
#include <optional>
#include <string_view>

/// The pre-tool answer for Cursor: a call of one of the memory service's own tools gets the session
/// that makes it.
namespace quillstead::hook::SessionStamp {

/// The tools that are stamped, by Cursor's names for them.
inline constexpr std::array<std::string_view, 3> tools{"MCP:grab", "MCP:memory_add",
                                                       "MCP:meeting_get"};

/// The tool argument that carries the session.
inline constexpr std::string_view key = contract::Argument::session;

/// The answer to a call; absent when the call goes through unchanged. A call of "Task" gets the
/// parent tag instead of the stamp. The answer never contains a decision.
std::optional<JSON::Object> answer(JSON::ObjectView payload, Decision decision);

}  // namespace quillstead::hook::SessionStamp
