#include "hook/SessionStamp.h"

#include "hook/Harness/Payload.h"
#include "hook/ParentTag.h"
#include "hook/PretoolAnswer.h"

#include <algorithm>

namespace quillstead::SessionStamp {

std::int32_t serve(const OS::Environment& environment) {
  return PretoolAnswer::serve(environment, answer);
}

std::optional<std::string> answer(std::string input) {
  const std::optional<JSON::Document> document = Payload::read(input);
  if (!document) return std::nullopt;
  const JSON::ObjectView payload = document->object();
  const auto tool = payload.find("tool_name").text();
  if (!tool) return std::nullopt;
  if (*tool == ParentTag::tool) return ParentTag::answer(payload, std::move(input));

  const auto toolInput = payload.find("tool_input").object();
  std::optional<std::string> session = Payload::nonBlank(payload, "session_id");
  const bool isStamped = std::find(tools.begin(), tools.end(), *tool) != tools.end();
  if (!isStamped || !toolInput || !session) return std::nullopt;

  JSON::Object stamped(*toolInput);
  stamped.set(key, std::move(*session));
  return PretoolAnswer::written(JSON::objectOf({{"updated_input", std::move(stamped)}}),
                                std::move(input));
}

}  // namespace quillstead::SessionStamp
