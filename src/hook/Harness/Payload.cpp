#include "hook/Harness/Payload.h"

#include "support/JSON/Reader.h"
#include "support/Text/Text.h"

namespace quillstead::Payload {

std::optional<JSON::Object> read(std::string_view input) {
  std::optional<JSON::Value> document = JSON::read(input);
  JSON::Object* const object = document ? document->object() : nullptr;
  if (!object) return std::nullopt;
  return std::move(*object);
}

std::string prompt(const JSON::Object& payload) {
  const std::string* const text = JSON::textOf(payload.find("prompt"));
  return text ? *text : "";
}

std::optional<std::string> nonBlank(const JSON::Value* value) {
  const std::string* const text = JSON::textOf(value);
  if (!text || Text::isBlank(*text)) return std::nullopt;
  return *text;
}

std::optional<std::string> nonBlank(const JSON::Object& payload, std::string_view key) {
  return nonBlank(payload.find(key));
}

}  // namespace quillstead::Payload
