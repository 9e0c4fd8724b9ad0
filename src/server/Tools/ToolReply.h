#pragma once

#include "support/JSON/Value.h"

#include <string>
#include <variant>

namespace quillstead {

/// What a tool answers.
struct ToolReply {
  std::string text;
  JSON::Object meta;     ///< left out when empty
  bool isError = false;  ///< the tool ran and could not do it; `text` says why
};

/// The arguments do not fit the tool's schema.
struct BadArguments {
  std::string reason;
};

using ToolOutcome = std::variant<ToolReply, BadArguments>;

inline ToolReply refusal(std::string text) {
  return {.text = std::move(text), .meta = {}, .isError = true};
}

/// The reply as the result of "tools/call".
JSON::Object asResult(ToolReply reply);

}  // namespace quillstead
