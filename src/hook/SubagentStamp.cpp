#include "hook/SubagentStamp.h"

#include "hook/Harness/Payload.h"
#include "hook/PretoolAnswer.h"

namespace quillstead::SubagentStamp {

std::int32_t serve(const OS::Environment& environment) {
  return PretoolAnswer::serve(environment, answer);
}

std::optional<std::string> answer(std::string input) {
  const std::optional<JSON::Document> document = Payload::read(input);
  if (!document) return std::nullopt;
  const JSON::ObjectView payload = document->object();
  const auto tool = payload.find("tool_name").text();
  if (!tool || !tool->starts_with(toolPrefix)) return std::nullopt;

  const auto toolInput = payload.find("tool_input").object();
  std::optional<std::string> agent = Payload::nonBlank(payload, "agent_id");
  if (!toolInput || !agent) return std::nullopt;

  JSON::Object stamped(*toolInput);
  stamped.set(key, std::move(*agent));
  return PretoolAnswer::written(
      JSON::objectOf(
          {{"hookSpecificOutput", JSON::objectOf({{"hookEventName", "PreToolUse"},
                                                  {"updatedInput", std::move(stamped)}})}}),
      std::move(input));
}

}  // namespace quillstead::SubagentStamp
