#include "hook/Harness/Payload.h"

#include "support/JSON/Reader.h"
#include "support/Text/Text.h"

namespace quillstead::Payload {

std::optional<JSON::Document> read(std::string_view input) {
  std::optional<JSON::Document> document = JSON::read(input);
  if (document && !document->root().object()) document.reset();
  return document;
}

std::string prompt(JSON::ObjectView payload) {
  return std::string(payload.find("prompt").text().value_or(""));
}

std::optional<std::string> nonBlank(JSON::View value) {
  const auto text = value.text();
  if (!text || Text::isBlank(*text)) return std::nullopt;
  return std::string(*text);
}

std::optional<std::string> nonBlank(JSON::ObjectView payload, std::string_view key) {
  return nonBlank(payload.find(key));
}

}  // namespace quillstead::Payload
