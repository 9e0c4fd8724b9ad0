#pragma once

#include "server/Tools/Arguments.h"
#include "server/Tools/Tools.h"
#include "support/OS/Environment.h"

#include <string_view>

/// The tool "memory_get_relevant": the cards that match a prompt.
namespace quillstead::server::MemoryGetRelevant {

inline constexpr std::string_view description =
    "The cards from memory that matter for a prompt, best first.";
inline constexpr std::string_view schema = R"json({
  "type": "object",
  "properties": {
    "prompt": {"type": "string", "description": "What the user asks, or what is to be done"},
    "cwd": {"type": "string",
            "description": "Working directory; the nearest .quillstead above it is the project's"},
    "session_id": {"type": "string"},
    "transcript_path": {"type": "string"}
  },
  "required": ["prompt"]
})json";

ToolReply run(Arguments& arguments, const OS::Environment& environment);

}  // namespace quillstead::server::MemoryGetRelevant
