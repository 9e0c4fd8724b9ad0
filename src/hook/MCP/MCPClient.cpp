#include "hook/MCP/MCPClient.h"

#include "hook/MCP/ChildProcess.h"
#include "hook/MCP/ReplyTruth.h"
#include "hook/Telemetry/ChildStderr.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace quillstead::hook {

namespace {

// --- The two requests, and how the exchange ended

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

/// Makes the reply from how the child ended.
struct ReplyOf {
  std::string_view tool;

  MCPReply operator()(const TimedOut& child) const {
    ChildStderr::forward(tool, child.standardError, std::nullopt);
    return missed(MCPReply::timeout);
  }
  MCPReply operator()(const NotSpawned&) const { return brokenServer(); }
  MCPReply operator()(Exited& child) const {
    if (child.status == 0) {
      child.standardError = {};  // frees memory: it may be as long as the reply
      return MCPReply::from(child.standardOutput);
    }
    ChildStderr::forward(tool, child.standardError, child.status);
    return brokenServer();
  }
};

// --- Finding the reply in what a server wrote

/// 2, 2.0 and 2.7 all count as 2; the string "2" does not.
bool isToolCallID(JSON::View id) {
  const std::optional<JSON::Number> number = id.number();
  if (!number) return false;
  const double value = number->toDouble();
  return value >= 2 && value < 3;
}

/// The most values in a response. A normal one has a few dozen; more would only cost memory.
constexpr std::size_t mostValues = 1'000'000;

/// The longest response, in bytes. It is in memory up to four times on its way to the harness.
constexpr std::size_t longestResponse = std::size_t{16} * 1024 * 1024;

/// False when the line cannot have a member "id", however it is escaped. Such a line need not be
/// parsed.
bool mayHaveID(std::string_view line) {
  return line.find("\"id\"") != std::string_view::npos ||
         line.find('\\') != std::string_view::npos || line.find('\0') != std::string_view::npos;
}

/// The first response to the tool call among the lines that the server wrote.
std::optional<JSON::Document> toolCallResponse(std::string_view output) {
  while (!output.empty()) {
    const std::string_view line = output.substr(0, output.find('\n'));
    output.remove_prefix(std::min(line.size() + 1, output.size()));
    if (line.size() > longestResponse || !mayHaveID(line)) continue;
    std::optional<JSON::Document> message = JSON::read(line, mostValues);
    if (message && isToolCallID(message->object().find("id"))) return message;
  }
  return std::nullopt;
}

/// The text of the first text item in a result's content. Later items are ignored.
std::optional<std::string> firstText(JSON::ObjectView result) {
  for (const JSON::View element : result.find("content").elements()) {
    const auto item = element.object();
    if (!item || item->find("type").string() != "text") continue;
    const auto text = item->find("text").string();
    return text ? std::optional<std::string>(*text) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

MCPReply MCPReply::from(std::string_view output) {
  MCPReply reply;
  reply.miss = noEnvelope;
  reply.response = toolCallResponse(output);
  if (!reply.response) return reply;
  const auto result = reply.response->object().find("result").object();
  if (!result) return reply;

  reply.meta = result->find("_meta").object().value_or(JSON::ObjectView());
  if (ReplyTruth::isTruthy(result->find("isError"))) return reply;
  reply.text = firstText(*result);
  if (reply.text) reply.miss = std::nullopt;
  return reply;
}

MCPReply MCPClient::call(std::string_view tool, JSON::Object arguments, Seconds leash) const {
  if (!(leash > Seconds::zero())) return missed(MCPReply::timeout);
  // Both requests are sent at once, without a notification between them. The server has to accept
  // the tool call right after the handshake.
  const std::string stream =
      line(handshake(clientName)) + line(toolCall(tool, std::move(arguments)));
  ChildOutcome outcome = ChildProcess::run(
      {.executable = executable, .input = stream, .leash = leash, .firstOutput = {}});
  return std::visit(ReplyOf{tool}, outcome);
}

}  // namespace quillstead::hook
