#pragma once

#include "support/OS/Environment.h"

#include <string>

namespace quillstead::hook::MCPBinary {

/// The path of the memory server to start. QUILLSTEAD_MCP_BIN gives it, as a path or as a command
/// name on PATH; without it, it is "quillstead-mcp" beside the hook's own executable. The file may
/// not exist: starting it shows that.
std::string resolve(const OS::Environment& environment);

}  // namespace quillstead::hook::MCPBinary
