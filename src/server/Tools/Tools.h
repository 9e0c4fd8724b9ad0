#pragma once

#include "server/Tools/ToolReply.h"
#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string_view>

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
