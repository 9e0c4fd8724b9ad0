#include "hook/MCP/MCPClient.h"

#include "hook/MCP/ChildProcess.h"
#include "hook/MCP/ReplyTruth.h"
#include "hook/Telemetry/ChildStderr.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace quillstead {

namespace {

constexpr std::string_view timeout = "timeout";
constexpr std::string_view noEnvelope = "no-envelope";

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

/// A server may write the number as it likes: 2, 2.0 and 2.7 all read as 2, the text "2" does not.
bool isToolCallID(const JSON::Value* id) {
  const JSON::Number* const number = id ? id->number() : nullptr;
  if (!number) return false;
  const double value = number->approximation();
  return value >= 2 && value < 3;
}

/// The first response to the tool call among the lines that the server wrote.
std::optional<JSON::Object> toolCallResponse(std::string_view output) {
  while (!output.empty()) {
    const std::string_view line = output.substr(0, output.find('\n'));
    output.remove_prefix(std::min(line.size() + 1, output.size()));
    std::optional<JSON::Value> document = JSON::read(line);
    JSON::Object* const message = document ? document->object() : nullptr;
    if (message && isToolCallID(message->find("id"))) return std::move(*message);
  }
  return std::nullopt;
}

JSON::Object* objectAt(JSON::Object& object, std::string_view key) {
  JSON::Value* const value = object.find(key);
  return value ? value->object() : nullptr;
}

/// The text of the first text item of a result's content; the later ones do not count.
std::optional<std::string> firstText(const JSON::Object& result) {
  const JSON::Array* const content = JSON::arrayOf(result.find("content"));
  if (!content) return std::nullopt;
  for (const JSON::Value& element : *content) {
    const JSON::Object* const item = element.object();
    if (!item || !JSON::isText(item->find("type"), "text")) continue;
    const std::string* const text = JSON::textOf(item->find("text"));
    return text ? std::optional(*text) : std::nullopt;
  }
  return std::nullopt;
}

MCPReply replyFrom(std::string_view output) {
  std::optional<JSON::Object> response = toolCallResponse(output);
  JSON::Object* const result = response ? objectAt(*response, "result") : nullptr;
  MCPReply reply{.text = {}, .meta = {}, .miss = noEnvelope};
  if (!result) return reply;

  if (JSON::Object* const meta = objectAt(*result, "_meta")) reply.meta = std::move(*meta);
  if (ReplyTruth::isTruthy(result->find("isError"))) return reply;
  reply.text = firstText(*result);
  if (reply.text) reply.miss = std::nullopt;
  return reply;
}

/// Turns each way a child can end into the reply it means.
struct ReplyOf {
  std::string_view tool;

  MCPReply operator()(const TimedOut& child) const {
    ChildStderr::forward(tool, child.standardError, std::nullopt);
    return {.text = {}, .meta = {}, .miss = timeout};
  }
  MCPReply operator()(const NotSpawned&) const {
    return {.text = {}, .meta = {}, .miss = noEnvelope, .declineFast = true};
  }
  MCPReply operator()(const Exited& child) const {
    if (child.status == 0) return replyFrom(child.standardOutput);
    ChildStderr::forward(tool, child.standardError, child.status);
    return {.text = {}, .meta = {}, .miss = noEnvelope, .declineFast = true};
  }
};

}  // namespace

MCPReply MCPClient::call(std::string_view tool, JSON::Object arguments, Seconds leash) const {
  if (!(leash > Seconds::zero())) return {.text = {}, .meta = {}, .miss = timeout};
  // Both requests at once, and no notification between them: the server is expected to take the
  // tool call right after the handshake.
  const std::string stream =
      line(handshake(clientName)) + line(toolCall(tool, std::move(arguments)));
  const ChildOutcome outcome = ChildProcess::run(
      {.executable = executable, .input = stream, .leash = leash, .firstOutput = {}});
  return std::visit(ReplyOf{tool}, outcome);
}

}  // namespace quillstead
