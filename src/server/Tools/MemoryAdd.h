#pragma once

#include "server/Tools/Arguments.h"
#include "server/Tools/Tools.h"
#include "support/OS/Environment.h"

#include <string_view>

/// The tool "memory_add": a new card.
namespace quillstead::server::MemoryAdd {

inline constexpr std::string_view description =
    "Remembers something for later sessions, as a new card: one decision, fact or way of "
    "working that is worth knowing again.";
inline constexpr std::string_view schema = R"json({
  "type": "object",
  "properties": {
    "text": {"type": "string", "description": "What to remember, in Markdown"},
    "title": {"type": "string", "description": "By default the text's heading or first line"},
    "tags": {"type": "array", "items": {"type": "string"}},
    "store": {"type": "string", "enum": ["project", "personal"],
              "description": "By default the project's when there is one"},
    "cwd": {"type": "string",
            "description": "Working directory; the nearest .quillstead above it is the project's"}
  },
  "required": ["text"]
})json";

ToolReply run(Arguments& arguments, const OS::Environment& environment);

}  // namespace quillstead::server::MemoryAdd
