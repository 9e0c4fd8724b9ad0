#pragma once

#include "hook/MCP/MCPClient.h"
#include "support/JSON/Writer.h"

#include <string>

namespace quillstead::unit {

/// A reply in one line: its text in brackets or "-", its metadata, its miss or "-", and "declines".
inline std::string described(const hook::MCPReply& reply) {
  std::string line = reply.text ? "[" + *reply.text + "]" : "-";
  line += " " + JSON::write(JSON::View(reply.meta), JSON::Slashes::plain) + " ";
  line += reply.miss ? std::string(*reply.miss) : "-";
  return line + (reply.declineFast ? " declines" : "");
}

}  // namespace quillstead::unit
