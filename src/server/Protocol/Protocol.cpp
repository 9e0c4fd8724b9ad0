#include "server/Protocol/Protocol.h"

#include "server/Protocol/Methods.h"
#include "server/Protocol/Reply.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "support/Text/Text.h"

#include <utility>

namespace quillstead::Protocol {

namespace {

bool isResponse(const JSON::Object& message) {
  return !message.find("method") && (message.find("result") || message.find("error"));
}

std::optional<JSON::Value> answerTo(const JSON::Value& value, const OS::Environment& environment) {
  const JSON::Object* const message = value.object();
  if (!message) return Reply::error(nullptr, Reply::Error::invalidRequest, "not an object");
  if (isResponse(*message)) return std::nullopt;

  const JSON::Value* const id = message->find("id");
  const bool usableId = !id || id->text() || id->number();
  const JSON::Value replyId = id && usableId ? *id : JSON::Value();
  const std::string* const method = JSON::textOf(message->find("method"));
  if (!JSON::isText(message->find("jsonrpc"), "2.0") || !method || !usableId) {
    return Reply::error(replyId, Reply::Error::invalidRequest,
                        "not a request of JSON-RPC 2.0 with an id that is a text or a number");
  }
  if (!id) return std::nullopt;  // a notification; none of them changes anything here

  const JSON::Value* const parameters = message->find("params");
  if (parameters && !parameters->object()) {
    return Reply::error(*id, Reply::Error::invalidParameters, "params must be an object");
  }
  const JSON::Object none;
  return Methods::answer(*id, *method, parameters ? *parameters->object() : none, environment);
}

/// Several messages in one array, as one of the protocol's versions allows.
std::optional<JSON::Value> answerToBatch(const JSON::Array& batch,
                                         const OS::Environment& environment) {
  if (batch.empty()) return Reply::error(nullptr, Reply::Error::invalidRequest, "an empty batch");
  JSON::Array answers;
  for (const JSON::Value& message : batch) {
    if (auto reply = answerTo(message, environment)) answers.push_back(std::move(*reply));
  }
  if (answers.empty()) return std::nullopt;
  return JSON::Value(std::move(answers));
}

}  // namespace

std::optional<std::string> answer(std::string_view line, const OS::Environment& environment) {
  if (Text::isBlank(line)) return std::nullopt;
  const std::optional<JSON::Value> message = JSON::read(line);
  std::optional<JSON::Value> reply;
  if (!message) {
    reply = Reply::error(nullptr, Reply::Error::unreadable, "the line is not a JSON object");
  } else if (const JSON::Array* const batch = message->array()) {
    reply = answerToBatch(*batch, environment);
  } else {
    reply = answerTo(*message, environment);
  }
  if (!reply) return std::nullopt;
  return JSON::write(*reply, JSON::Slashes::plain);
}

std::string answerToTooLongLine() {
  return JSON::write(Reply::error(nullptr, Reply::Error::unreadable, "the line is too long"),
                     JSON::Slashes::plain);
}

}  // namespace quillstead::Protocol
