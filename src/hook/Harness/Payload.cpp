#include "hook/Harness/Payload.h"

#include "support/JSON/Reader.h"
#include "support/Text/Text.h"

namespace quillstead::hook::Payload {

std::optional<JSON::Document> read(std::string_view input) {
  std::optional<JSON::Document> document = JSON::read(input);
  if (document && !document->root().object()) document.reset();
  return document;
}

std::string prompt(JSON::ObjectView payload) {
  return std::string(payload.find("prompt").string().value_or(""));
}

std::optional<std::string> nonBlank(JSON::View value) {
  const auto string = value.string();
  if (!string || Text::isBlank(*string)) return std::nullopt;
  return std::string(*string);
}

std::optional<std::string> nonBlank(JSON::ObjectView payload, std::string_view key) {
  return nonBlank(payload.find(key));
}

std::optional<JSON::Object> stampedInput(JSON::ObjectView payload, std::string_view key,
                                         std::string_view identity) {
  const auto input = payload.find("tool_input").object();
  std::optional<std::string> name = nonBlank(payload, identity);
  if (!input || !name) return std::nullopt;
  JSON::Object stamped(*input);
  stamped.set(key, *std::move(name));
  return stamped;
}

}  // namespace quillstead::hook::Payload
