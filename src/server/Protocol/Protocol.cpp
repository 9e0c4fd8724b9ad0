#include "server/Protocol/Protocol.h"

#include "server/Protocol/Methods.h"
#include "server/Protocol/Reply.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "support/Text/Text.h"

#include <utility>

namespace quillstead::Protocol {

namespace {

bool isResponse(JSON::ObjectView message) {
  return !message.find("method").isThere() &&
         (message.find("result").isThere() || message.find("error").isThere());
}

std::optional<JSON::Value> answerTo(JSON::View value, const OS::Environment& environment) {
  const auto message = value.object();
  if (!message) return Reply::error({}, Reply::Error::invalidRequest, "not an object");
  if (isResponse(*message)) return std::nullopt;

  const JSON::View id = message->find("id");
  const bool usableId = !id.isThere() || id.text() || id.number();
  const auto method = message->find("method").text();
  if (message->find("jsonrpc").text() != "2.0" || !method || !usableId) {
    return Reply::error(usableId ? id : JSON::View(), Reply::Error::invalidRequest,
                        "not a request of JSON-RPC 2.0 with an id that is a text or a number");
  }
  if (!id.isThere()) return std::nullopt;  // a notification; none of them changes anything here

  const JSON::View parameters = message->find("params");
  if (parameters.isThere() && !parameters.object()) {
    return Reply::error(id, Reply::Error::invalidParameters, "params must be an object");
  }
  return Methods::answer(id, *method, parameters.object().value_or(JSON::ObjectView()),
                         environment);
}

/// Several messages in one array, as one of the protocol's versions allows.
std::optional<JSON::Value> answerToBatch(JSON::ArrayView batch,
                                         const OS::Environment& environment) {
  if (batch.empty()) return Reply::error({}, Reply::Error::invalidRequest, "an empty batch");
  JSON::Array answers;
  for (const JSON::View message : batch) {
    if (auto reply = answerTo(message, environment)) answers.push_back(std::move(*reply));
  }
  if (answers.empty()) return std::nullopt;
  return JSON::Value(std::move(answers));
}

}  // namespace

std::optional<std::string> answer(std::string_view line, const OS::Environment& environment) {
  if (Text::isBlank(line)) return std::nullopt;
  const std::optional<JSON::Document> message = JSON::read(line);
  std::optional<JSON::Value> reply;
  if (!message) {
    reply = Reply::error({}, Reply::Error::unreadable, "the line is not a JSON object");
  } else if (const auto batch = message->root().array()) {
    reply = answerToBatch(*batch, environment);
  } else {
    reply = answerTo(message->root(), environment);
  }
  if (!reply) return std::nullopt;
  return JSON::write(*reply, JSON::Slashes::plain);
}

std::string answerToTooLongLine() {
  return JSON::write(Reply::error({}, Reply::Error::unreadable, "the line is too long"),
                     JSON::Slashes::plain);
}

}  // namespace quillstead::Protocol
