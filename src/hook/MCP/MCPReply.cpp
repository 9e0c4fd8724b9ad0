#include "hook/MCP/MCPReply.h"

#include "hook/MCP/ReplyTruth.h"
#include "support/JSON/Reader.h"

#include <algorithm>
#include <utility>

namespace quillstead {

namespace {

/// A server may write the number as it likes: 2, 2.0 and 2.7 all read as 2, the text "2" does not.
bool isToolCallID(JSON::View id) {
  const std::optional<JSON::Number> number = id.number();
  if (!number) return false;
  const double value = number->approximation();
  return value >= 2 && value < 3;
}

/// A response holds some dozens of values; one with more than this is not worth the memory it
/// takes.
constexpr std::size_t mostValues = 1'000'000;

/// False when no member of what the line holds can be called "id", however it is spelled: reading
/// such a line would only take time.
bool mayHaveID(std::string_view line) {
  return line.find("\"id\"") != std::string_view::npos ||
         line.find('\\') != std::string_view::npos || line.find('\0') != std::string_view::npos;
}

/// The first response to the tool call among the lines that the server wrote.
std::optional<JSON::Document> toolCallResponse(std::string_view output) {
  while (!output.empty()) {
    const std::string_view line = output.substr(0, output.find('\n'));
    output.remove_prefix(std::min(line.size() + 1, output.size()));
    if (!mayHaveID(line)) continue;
    std::optional<JSON::Document> message = JSON::read(line, mostValues);
    if (message && isToolCallID(message->object().find("id"))) return message;
  }
  return std::nullopt;
}

/// The text of the first text item of a result's content; the later ones do not count.
std::optional<std::string> firstText(JSON::ObjectView result) {
  for (const JSON::View element : result.find("content").elements()) {
    const auto item = element.object();
    if (!item || item->find("type").text() != "text") continue;
    const auto text = item->find("text").text();
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

}  // namespace quillstead
