#pragma once

#include "contract/Contract.h"
#include "hook/Harness/CommandFlag.h"
#include "support/JSON/Value.h"

#include <optional>
#include <string_view>

/// The pre-tool answer for every harness except Cursor. When a sub-agent calls one of the memory
/// service's own tools, the call gets the sub-agent's identifier.
namespace quillstead::hook::SubagentStamp {

/// What the names of the memory service's tools begin with.
inline constexpr std::string_view toolPrefix = "mcp__quillstead__";

/// The tool argument that carries the sub-agent.
inline constexpr std::string_view key = contract::Argument::subagent;

/// The answer to a call; absent when the call goes through unchanged. Calls of the main agent
/// always do.
std::optional<JSON::Object> answer(JSON::ObjectView payload, Decision decision);

}  // namespace quillstead::hook::SubagentStamp
