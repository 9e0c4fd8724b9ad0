#pragma once

#include "server/Tools/Arguments.h"
#include "server/Tools/Tools.h"
#include "support/OS/Environment.h"

#include <string_view>

/// The tool "grab": one whole card, by its title or file name.
namespace quillstead::server::Grab {

inline constexpr std::string_view description =
    "Reads one whole card from memory, by its title or its file name.";
inline constexpr std::string_view schema = R"json({
  "type": "object",
  "properties": {
    "name": {"type": "string", "description": "The card's title or file name"},
    "store": {"type": "string", "enum": ["project", "personal"],
              "description": "By default both"},
    "cwd": {"type": "string",
            "description": "Working directory; the nearest .quillstead above it is the project's"}
  },
  "required": ["name"]
})json";

ToolReply run(Arguments& arguments, const OS::Environment& environment);

}  // namespace quillstead::server::Grab
