#pragma once

#include "support/JSON/Document.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillstead {

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

}  // namespace quillstead
