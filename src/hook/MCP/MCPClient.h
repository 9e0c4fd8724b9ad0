#pragma once

#include "hook/Budget.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead::hook {

/// The result of one tool call.
struct MCPReply {
  // Why there is no answer: too late, or nothing readable.
  static constexpr std::string_view timeout = "timeout";
  static constexpr std::string_view noEnvelope = "no-envelope";

  std::optional<std::string> text;       ///< the tool's answer; only on success
  JSON::ObjectView meta;                 ///< the result's "_meta"; empty when there is none
  std::optional<std::string_view> miss;  ///< `timeout` or `noEnvelope`; absent on success
  bool declineFast = false;  ///< the server could not be started, or failed: do not try it again
  std::optional<JSON::Document> response;  ///< what `meta` lies in

  /// Finds the reply in a server's output: the first line that is a response to the tool call. All
  /// other lines are skipped.
  static MCPReply from(std::string_view output);
};

/// Calls tools of the memory server. Each call starts a server process of its own.
struct MCPClient {
  std::string executable;       ///< the server's path
  std::string_view clientName;  ///< how the hook introduces itself

  /// Blocks for at most `leash`. Starts nothing when `leash` is 0 or less.
  [[nodiscard]] MCPReply call(std::string_view tool, JSON::Object arguments, Seconds leash) const;
};

}  // namespace quillstead::hook
