#include "server/Protocol/Protocol.h"

#include "server/Protocol/Methods.h"
#include "server/Protocol/Reply.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "support/Text/Text.h"

#include <utility>

namespace quillstead::server::Protocol {

namespace {

/// So many take less than 200 MB, and are more than a client can mean.
constexpr std::size_t mostValues = 4'000'000;

bool isResponse(JSON::ObjectView message) {
  return !message.find("method").exists() &&
         (message.find("result").exists() || message.find("error").exists());
}

std::optional<JSON::Value> answerTo(JSON::View value, const OS::Environment& environment) {
  const auto message = value.object();
  if (!message) return Reply::error({}, Reply::Error::invalidRequest, "not an object");
  if (isResponse(*message)) return std::nullopt;

  const JSON::View id = message->find("id");
  const bool usableId = !id.exists() || id.string() || id.number();
  const auto method = message->find("method").string();
  if (message->find("jsonrpc").string() != "2.0" || !method || !usableId) {
    return Reply::error(usableId ? id : JSON::View(), Reply::Error::invalidRequest,
                        "not a request of JSON-RPC 2.0 with an id that is a string or a number");
  }
  if (!id.exists()) return std::nullopt;  // a notification; none of them changes anything here

  const JSON::View parameters = message->find("params");
  if (parameters.exists() && !parameters.object()) {
    return Reply::error(id, Reply::Error::invalidParams, "params must be an object");
  }
  return Methods::answer(id, *method, parameters.object().value_or(JSON::ObjectView()),
                         environment);
}

/// Several messages in one array, as one of the protocol's versions allows. Each is answered before
/// the next is looked at, so that no more than one answer is held.
bool answerBatch(JSON::ArrayView batch, const OS::Environment& environment, const Sink& write) {
  std::string_view before = "[";
  for (const JSON::View message : batch) {
    const auto reply = answerTo(message, environment);
    if (!reply) continue;
    std::string text(before);
    if (!write(text.append(JSON::write(*reply, JSON::Slashes::plain)))) return false;
    before = ",";
  }
  const bool answeredAny = before == ",";
  return !answeredAny || write("]");
}

}  // namespace

bool answer(std::string_view line, const OS::Environment& environment, const Sink& write) {
  if (Text::isBlank(line)) return true;
  const std::optional<JSON::Document> message = JSON::read(line, mostValues);
  if (const auto batch = message ? message->root().array() : std::nullopt;
      batch && !batch->empty()) {
    return answerBatch(*batch, environment, write);
  }
  std::optional<JSON::Value> reply;
  if (!message) {
    reply = Reply::error({}, Reply::Error::parseError,
                         "the line is not a JSON object, or holds too many values");
  } else if (message->root().array()) {
    reply = Reply::error({}, Reply::Error::invalidRequest, "an empty batch");
  } else {
    reply = answerTo(message->root(), environment);
  }
  return !reply || write(JSON::write(*reply, JSON::Slashes::plain));
}

std::string answerToTooLongLine() {
  return JSON::write(Reply::error({}, Reply::Error::parseError, "the line is too long"),
                     JSON::Slashes::plain);
}

}  // namespace quillstead::server::Protocol
