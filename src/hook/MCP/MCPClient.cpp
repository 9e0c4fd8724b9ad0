#include "hook/MCP/MCPClient.h"

#include "hook/MCP/ChildProcess.h"
#include "hook/Telemetry/ChildStderr.h"
#include "support/JSON/Writer.h"

#include <utility>
#include <variant>

namespace quillstead {

namespace {

JSON::Object request(int id, std::string_view method, JSON::Object parameters) {
  return JSON::objectOf(
      {{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", std::move(parameters)}});
}

JSON::Object handshake(std::string_view clientName) {
  return request(
      1, "initialize",
      JSON::objectOf({{"protocolVersion", "2024-11-05"},
                      {"capabilities", JSON::Object()},
                      {"clientInfo", JSON::objectOf({{"name", clientName}, {"version", "1"}})}}));
}

JSON::Object toolCall(std::string_view tool, JSON::Object arguments) {
  return request(2, "tools/call",
                 JSON::objectOf({{"name", tool}, {"arguments", std::move(arguments)}}));
}

std::string line(JSON::Object request) {
  return JSON::write(std::move(request), JSON::Slashes::escaped) + '\n';
}

MCPReply missed(std::string_view reason) {
  MCPReply reply;
  reply.miss = reason;
  return reply;
}

MCPReply brokenServer() {
  MCPReply reply = missed(MCPReply::noEnvelope);
  reply.declineFast = true;
  return reply;
}

/// Turns each way a child can end into the reply it means.
struct ReplyOf {
  std::string_view tool;

  MCPReply operator()(const TimedOut& child) const {
    ChildStderr::forward(tool, child.standardError, std::nullopt);
    return missed(MCPReply::timeout);
  }
  MCPReply operator()(const NotSpawned&) const { return brokenServer(); }
  MCPReply operator()(const Exited& child) const {
    if (child.status == 0) return MCPReply::from(child.standardOutput);
    ChildStderr::forward(tool, child.standardError, child.status);
    return brokenServer();
  }
};

}  // namespace

MCPReply MCPClient::call(std::string_view tool, JSON::Object arguments, Seconds leash) const {
  if (!(leash > Seconds::zero())) return missed(MCPReply::timeout);
  // Both requests at once, and no notification between them: the server is expected to take the
  // tool call right after the handshake.
  const std::string stream =
      line(handshake(clientName)) + line(toolCall(tool, std::move(arguments)));
  const ChildOutcome outcome = ChildProcess::run(
      {.executable = executable, .input = stream, .leash = leash, .firstOutput = {}});
  return std::visit(ReplyOf{tool}, outcome);
}

}  // namespace quillstead
