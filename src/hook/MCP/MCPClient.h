#pragma once

#include "hook/Budget.h"
#include "hook/MCP/MCPReply.h"
#include "support/JSON/Value.h"

#include <string>
#include <string_view>

namespace quillstead {

/// Calls tools of the memory server, each in one exchange with a fresh server process.
struct MCPClient {
  std::string executable;       ///< the server's path
  std::string_view clientName;  ///< how the hook introduces itself

  /// Blocks until the reply is there, at most `leash`; starts nothing when that is not above 0.
  [[nodiscard]] MCPReply call(std::string_view tool, JSON::Object arguments, Seconds leash) const;
};

}  // namespace quillstead
