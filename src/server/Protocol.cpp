#include "server/Protocol.h"

#include "server/Shown.h"
#include "server/Tools/Tools.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace quillstead::server::Protocol {

namespace {

/// JSON-RPC responses. `id`: the request's, whose document must outlive the response; absent when
/// it could not be read, which is written as null.
namespace Response {

/// The error codes of JSON-RPC 2.0.
enum class Error : std::int32_t {
  parseError = -32'700,
  invalidRequest = -32'600,
  methodNotFound = -32'601,
  invalidParams = -32'602,
};

JSON::Value result(JSON::View id, JSON::Object result) {
  return JSON::objectOf({{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}});
}

JSON::Value error(JSON::View id, Error code, std::string_view message) {
  JSON::Object error =
      JSON::objectOf({{"code", static_cast<std::int64_t>(code)}, {"message", message}});
  return JSON::objectOf({{"jsonrpc", "2.0"}, {"id", id}, {"error", std::move(error)}});
}

}  // namespace Response

/// The server behaves the same in all of them.
constexpr std::array<std::string_view, 4> versions{"2024-11-05", "2025-03-26", "2025-06-18",
                                                   "2025-11-25"};

/// The protocol version for a client that asks for `wanted`: that one if it is known, else the
/// newest known one.
std::string_view agreedVersion(std::string_view wanted) {
  const auto* const known = std::find(versions.begin(), versions.end(), wanted);
  return known != versions.end() ? *known : versions.back();
}

constexpr std::string_view instructions =
    "Memory kept as plain Markdown files: rules that always hold, and cards, one piece of "
    "knowledge each. Call memory_get_relevant with what you are about to do, grab for one whole "
    "card, and memory_add for what will be worth knowing in later sessions.";

JSON::Value initialize(JSON::View id, JSON::ObjectView parameters) {
  const auto wanted = parameters.find("protocolVersion").string();
  if (!wanted) {
    return Response::error(id, Response::Error::invalidParams, "protocolVersion must be a string");
  }
  JSON::Object capabilities = JSON::objectOf({{"tools", JSON::Object()}});
  JSON::Object server =
      JSON::objectOf({{"name", "quillstead-mcp"}, {"version", QUILLSTEAD_VERSION}});
  return Response::result(id, JSON::objectOf({{"protocolVersion", agreedVersion(*wanted)},
                                              {"capabilities", std::move(capabilities)},
                                              {"serverInfo", std::move(server)},
                                              {"instructions", instructions}}));
}

JSON::Value listTools(JSON::View id, JSON::ObjectView parameters) {
  const JSON::View cursor = parameters.find("cursor");
  if (cursor.exists() && !cursor.isNull()) {  // none was ever handed out: the list has one page
    return Response::error(id, Response::Error::invalidParams, "the cursor is unknown");
  }
  return Response::result(id, JSON::objectOf({{"tools", Tools::list()}}));
}

JSON::Value callTool(JSON::View id, JSON::ObjectView parameters,
                     const OS::Environment& environment) {
  const auto name = parameters.find("name").string();
  if (!name) return Response::error(id, Response::Error::invalidParams, "name must be a string");
  const JSON::View arguments = parameters.find("arguments");
  if (arguments.exists() && !arguments.isNull() && !arguments.object()) {
    return Response::error(id, Response::Error::invalidParams, "arguments must be an object");
  }
  auto reply = Tools::call(*name, arguments.object().value_or(JSON::ObjectView()), environment);
  if (!reply) {
    return Response::error(id, Response::Error::invalidParams,
                           "there is no tool \"" + Shown::line(*name) + '"');
  }
  return Response::result(id, Tools::asResult(std::move(*reply)));
}

/// The response to a well-formed request; it may be an error.
JSON::Value responseTo(JSON::View id, std::string_view method, JSON::ObjectView parameters,
                       const OS::Environment& environment) {
  if (method == "initialize") return initialize(id, parameters);
  if (method == "ping") return Response::result(id, {});
  if (method == "tools/list") return listTools(id, parameters);
  if (method == "tools/call") return callTool(id, parameters, environment);
  return Response::error(id, Response::Error::methodNotFound,
                         "there is no method \"" + Shown::line(method) + '"');
}

/// This many values take less than 200 MB; no real client sends more.
constexpr std::size_t mostValues = 4'000'000;

bool isResponse(JSON::ObjectView message) {
  return !message.find("method").exists() &&
         (message.find("result").exists() || message.find("error").exists());
}

std::optional<JSON::Value> responseTo(JSON::View value, const OS::Environment& environment) {
  const auto message = value.object();
  if (!message) return Response::error({}, Response::Error::invalidRequest, "not an object");
  if (isResponse(*message)) return std::nullopt;

  const JSON::View id = message->find("id");
  const bool usableId = !id.exists() || id.string() || id.number();
  const auto method = message->find("method").string();
  if (message->find("jsonrpc").string() != "2.0" || !method || !usableId) {
    return Response::error(usableId ? id : JSON::View(), Response::Error::invalidRequest,
                           "not a request of JSON-RPC 2.0 with an id that is a string or a number");
  }
  if (!id.exists()) return std::nullopt;  // a notification; none of them changes anything here

  const JSON::View parameters = message->find("params");
  if (parameters.exists() && !parameters.object()) {
    return Response::error(id, Response::Error::invalidParams, "params must be an object");
  }
  return responseTo(id, *method, parameters.object().value_or(JSON::ObjectView()), environment);
}

/// A batch: several messages in one array, which one version of the protocol allows. Each is
/// answered before the next is read, so that only one response is in memory.
bool respondToBatch(JSON::ArrayView batch, const OS::Environment& environment, const Sink& write) {
  std::string_view before = "[";
  for (const JSON::View message : batch) {
    const auto response = responseTo(message, environment);
    if (!response) continue;
    std::string text(before);
    if (!write(text.append(JSON::write(*response, JSON::Slashes::plain)))) return false;
    before = ",";
  }
  const bool respondedToAny = before == ",";
  return !respondedToAny || write("]");
}

}  // namespace

bool respond(std::string_view line, const OS::Environment& environment, const Sink& write) {
  if (Text::isBlank(line)) return true;
  const std::optional<JSON::Document> message = JSON::read(line, mostValues);
  if (const auto batch = message ? message->root().array() : std::nullopt;
      batch && !batch->empty()) {
    return respondToBatch(*batch, environment, write);
  }
  std::optional<JSON::Value> response;
  if (!message) {
    response = Response::error({}, Response::Error::parseError,
                               "the line is not a JSON object, or holds too many values");
  } else if (message->root().array()) {
    response = Response::error({}, Response::Error::invalidRequest, "an empty batch");
  } else {
    response = responseTo(message->root(), environment);
  }
  return !response || write(JSON::write(*response, JSON::Slashes::plain));
}

std::string responseToTooLongLine() {
  return JSON::write(Response::error({}, Response::Error::parseError, "the line is too long"),
                     JSON::Slashes::plain);
}

}  // namespace quillstead::server::Protocol
