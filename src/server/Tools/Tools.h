#pragma once

#include "server/Shown.h"
#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead::server {

/// What a tool gives.
struct ToolReply {
  std::string text;
  JSON::Object meta;     ///< left out when empty
  bool isError = false;  ///< the tool ran and failed; `text` says why
};

/// `text` may quote anything.
inline ToolReply refusal(std::string_view text) {
  return {.text = Shown::text(text), .meta = {}, .isError = true};
}

/// The arguments do not match the tool's schema. By the protocol, the tool reports this, so that
/// the agent reads the reason and can call again.
inline ToolReply badArguments(const std::string& reason) {
  return refusal("Wrong arguments: " + reason + '.');
}

}  // namespace quillstead::server

/// The tools that the server offers.
namespace quillstead::server::Tools {

/// Their names, descriptions and schemas, for "tools/list".
JSON::Array list();

/// The tool's reply; absent when there is no tool of that name.
std::optional<ToolReply> call(std::string_view name, JSON::ObjectView arguments,
                              const OS::Environment& environment);

/// A reply as the result of "tools/call".
JSON::Object asResult(ToolReply reply);

}  // namespace quillstead::server::Tools
