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
  std::optional<JSON::Object> payload = Payload::read(input);
  const std::string* const tool = payload ? JSON::textOf(payload->find("tool_name")) : nullptr;
  if (!tool) return std::nullopt;
  if (*tool == ParentTag::tool) return ParentTag::answer(std::move(*payload), std::move(input));

  JSON::Object* const toolInput = JSON::objectOf(payload->find("tool_input"));
  std::optional<std::string> session = Payload::nonBlank(*payload, "session_id");
  const bool isStamped = std::find(tools.begin(), tools.end(), *tool) != tools.end();
  if (!isStamped || !toolInput || !session) return std::nullopt;

  toolInput->set(key, std::move(*session));
  return PretoolAnswer::written(JSON::objectOf({{"updated_input", std::move(*toolInput)}}),
                                std::move(input));
}

}  // namespace quillstead::SessionStamp
