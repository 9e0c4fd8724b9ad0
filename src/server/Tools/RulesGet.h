#pragma once

#include "server/Tools/Arguments.h"
#include "server/Tools/Tools.h"
#include "support/OS/Environment.h"

#include <string_view>

/// The tool "rules_get": the rules, and the titles of the cards.
namespace quillstead::server::RulesGet {

inline constexpr std::string_view description =
    "The rules that always hold for this user and project, and the titles of the cards in "
    "memory.";
inline constexpr std::string_view schema = R"json({
  "type": "object",
  "properties": {
    "cwd": {"type": "string",
            "description": "Working directory; the nearest .quillstead above it is the project's"},
    "session_id": {"type": "string"},
    "transcript_path": {"type": "string"},
    "card": {"type": "boolean", "description": "Give the rules as a card that may be cut"},
    "card_ceiling": {"type": "integer", "minimum": 1,
                     "description": "Most bytes of the card"},
    "card_head_ceiling": {"type": "integer", "minimum": 1,
                          "description": "Most bytes of the card without its index of titles"}
  }
})json";

ToolReply run(Arguments& arguments, const OS::Environment& environment);

}  // namespace quillstead::server::RulesGet
