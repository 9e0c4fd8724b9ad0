#pragma once

#include "support/JSON/Value.h"

#include <optional>
#include <string_view>

/// Tells a sub-agent which session started it, by a tag at the end of its prompt.
namespace quillstead::hook::ParentTag {

/// The tool that starts a sub-agent.
inline constexpr std::string_view tool = "Task";

/// The answer to a call of the tool "Task": its input with "[qs-parent:<session>]" behind the
/// prompt, after a blank line. The tag is added on every call, also to a prompt that has one.
/// Absent for another tool, an input whose prompt is no string, and a payload without a session.
std::optional<JSON::Object> answer(JSON::ObjectView payload);

}  // namespace quillstead::hook::ParentTag
