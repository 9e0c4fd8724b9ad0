#pragma once

#include "support/JSON/Value.h"

#include <optional>
#include <string_view>

/// Adds a tag to a sub-agent's prompt that names the session that started it.
namespace quillstead::hook::ParentTag {

/// The tool that starts a sub-agent.
inline constexpr std::string_view tool = "Task";

/// The answer to a call of the tool "Task": its input, with a blank line and
/// "[qs-parent:<session>]" after the prompt. A prompt that has a tag gets another one. Absent for
/// other tools, when the prompt is not a string, and when the payload has no session.
std::optional<JSON::Object> answer(JSON::ObjectView payload);

}  // namespace quillstead::hook::ParentTag
