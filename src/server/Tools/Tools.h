#pragma once

#include "server/Tools/ToolReply.h"
#include "support/JSON/Value.h"
#include "support/OS/Environment.h"

#include <string_view>

/// The tools that the server offers.
namespace quillstead::Tools {

/// Their names, descriptions and schemas, as "tools/list" gives them.
JSON::Array list();

ToolOutcome call(std::string_view name, JSON::ObjectView arguments,
                 const OS::Environment& environment);

}  // namespace quillstead::Tools
