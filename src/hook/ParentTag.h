#pragma once

#include "support/JSON/View.h"

#include <optional>
#include <string>

/// Tells a sub-agent which session started it, by a tag at the end of its prompt.
namespace quillstead::ParentTag {

/// The tool that starts a sub-agent.
inline constexpr std::string_view tool = "Task";

/// The answer to a call of the tool "Task": its input with "[qs-parent:<session>]" behind the
/// prompt, after a blank line. The tag is added on every call, also to a prompt that has one.
/// Absent for another tool, an input without a prompt text, and a payload without a session.
///
/// The document takes the memory of `reused`.
std::optional<std::string> answer(JSON::ObjectView payload, std::string reused = {});

}  // namespace quillstead::ParentTag
