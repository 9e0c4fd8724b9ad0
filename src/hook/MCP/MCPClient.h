#pragma once

#include "hook/Budget.h"
#include "support/JSON/Document.h"
#include "support/JSON/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead::hook {

/// What one tool call brought back.
struct MCPReply {
  // Why there is no answer: no time, or nothing that can be read as one.
  static constexpr std::string_view timeout = "timeout";
  static constexpr std::string_view noEnvelope = "no-envelope";

  std::optional<std::string> text;       ///< the tool's answer; only on success
  JSON::ObjectView meta;                 ///< the result's "_meta"; empty when there is none
  std::optional<std::string_view> miss;  ///< `timeout` or `noEnvelope`; absent on success
  bool declineFast = false;  ///< the server could not be started, or failed: do not try it again
  std::optional<JSON::Document> response;  ///< what `meta` lies in

  /// The reply in all that a server wrote: the first line that is a response to the tool call
  /// counts, every other line is passed over.
  static MCPReply from(std::string_view output);
};

/// Calls tools of the memory server, each in one exchange with a fresh server process.
struct MCPClient {
  std::string executable;       ///< the server's path
  std::string_view clientName;  ///< how the hook introduces itself

  /// Blocks until the reply is there, at most `leash`; starts nothing when that is not above 0.
  [[nodiscard]] MCPReply call(std::string_view tool, JSON::Object arguments, Seconds leash) const;
};

}  // namespace quillstead::hook
