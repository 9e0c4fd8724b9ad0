#include "hook/SubagentStamp.h"

#include "hook/Harness/Payload.h"

#include <utility>

namespace quillstead::hook::SubagentStamp {

std::optional<JSON::Object> answer(JSON::ObjectView payload, Decision decision) {
  const auto tool = payload.find("tool_name").string();
  if (!tool || !tool->starts_with(toolPrefix)) return std::nullopt;

  std::optional<JSON::Object> stamped = Payload::stampedInput(payload, key, "agent_id");
  if (!stamped) return std::nullopt;
  JSON::Object output =
      JSON::objectOf({{"hookEventName", "PreToolUse"}, {"updatedInput", *std::move(stamped)}});
  if (decision == Decision::allow) output.set("permissionDecision", "allow");
  return JSON::objectOf({{"hookSpecificOutput", std::move(output)}});
}

}  // namespace quillstead::hook::SubagentStamp
