#pragma once

#include "hook/Budget.h"
#include "support/JSON/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead {

/// What one tool call brought back.
struct MCPReply {
  std::optional<std::string> text;       ///< the tool's answer; only on success
  JSON::Object meta;                     ///< the result's "_meta"; empty when there is none
  std::optional<std::string_view> miss;  ///< why there is no answer: "timeout" or "no-envelope"
  bool declineFast = false;  ///< the server could not be started, or failed: do not try it again
};

/// Calls tools of the memory server, each in one exchange with a fresh server process.
struct MCPClient {
  std::string executable;       ///< the server's path
  std::string_view clientName;  ///< how the hook introduces itself

  /// Blocks until the reply is there, at most `leash`; starts nothing when that is not above 0.
  [[nodiscard]] MCPReply call(std::string_view tool, JSON::Object arguments, Seconds leash) const;
};

}  // namespace quillstead
