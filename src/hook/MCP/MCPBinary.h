#pragma once

#include "support/OS/Environment.h"

#include <string>

namespace quillstead::hook::MCPBinary {

/// The path of the memory server to start: what QUILLSTEAD_MCP_BIN says, as a path or as a command
/// name looked up on PATH; without it, "quillstead-mcp" beside the hook's own executable. Whether
/// there is such a file is only known when it is started.
std::string resolve(const OS::Environment& environment);

}  // namespace quillstead::hook::MCPBinary
