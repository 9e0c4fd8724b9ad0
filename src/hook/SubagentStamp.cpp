#include "hook/SubagentStamp.h"

#include "hook/Harness/Payload.h"
#include "hook/PretoolAnswer.h"

namespace quillstead::SubagentStamp {

std::int32_t serve(const OS::Environment& environment) {
  return PretoolAnswer::serve(environment, answer);
}

std::optional<std::string> answer(std::string input) {
  std::optional<JSON::Object> payload = Payload::read(input);
  const std::string* const tool = payload ? JSON::textOf(payload->find("tool_name")) : nullptr;
  if (!tool || !tool->starts_with(toolPrefix)) return std::nullopt;

  JSON::Object* const toolInput = JSON::objectOf(payload->find("tool_input"));
  std::optional<std::string> agent = Payload::nonBlank(*payload, "agent_id");
  if (!toolInput || !agent) return std::nullopt;

  toolInput->set(key, std::move(*agent));
  return PretoolAnswer::written(
      JSON::objectOf(
          {{"hookSpecificOutput", JSON::objectOf({{"hookEventName", "PreToolUse"},
                                                  {"updatedInput", std::move(*toolInput)}})}}),
      std::move(input));
}

}  // namespace quillstead::SubagentStamp
