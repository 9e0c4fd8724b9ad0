#include "ToolCall.h"

#include "JSONText.h"

#include <gtest/gtest.h>

namespace quillstead {

std::string ToolCall::payload(std::string_view input, std::string_view identity) const {
  return R"({"hook_event_name":"x","tool_name":)" + jsonString(tool) + "," +
         jsonString(identityKey) + ":" + jsonString(identity) + R"(,"tool_input":)" +
         std::string(input) + R"(,"cwd":"/"})";
}

std::string ToolCall::answer(std::string_view input) const {
  if (harness.name == "cursor") return R"({"updated_input":)" + std::string(input) + "}";
  return R"({"hookSpecificOutput":{"hookEventName":"PreToolUse","updatedInput":)" +
         std::string(input) + "}}";
}

std::string_view ToolCall::inputIn(std::string_view answer) const {
  const std::string_view key =
      harness.name == "cursor" ? R"("updated_input":)" : R"("updatedInput":)";
  const std::size_t at = answer.find(key);
  EXPECT_NE(at, std::string_view::npos) << answer.substr(0, 200);
  if (at == std::string_view::npos) return "{}";
  std::string_view input = answer.substr(at + key.size());
  while (input.ends_with('\n')) input.remove_suffix(1);
  return input.substr(0, input.size() - (harness.name == "cursor" ? 1 : 2));
}

const std::vector<ToolCall>& toolCalls() {
  static const std::vector<ToolCall> all = [] {
    std::vector<ToolCall> calls = subagentCalls();
    calls.push_back(cursorCalls().front());
    return calls;
  }();
  return all;
}

std::vector<ToolCall> cursorCalls() {
  std::vector<ToolCall> calls;
  for (const std::string tool : {"MCP:grab", "MCP:memory_add", "MCP:meeting_get"}) {
    calls.push_back({.harness = harness("cursor"),
                     .tool = tool,
                     .identityKey = "session_id",
                     .stampKey = "_quillstead_session"});
  }
  return calls;
}

std::vector<ToolCall> subagentCalls() {
  std::vector<ToolCall> calls;
  for (const Harness& harness : harnesses()) {
    if (harness.name == "cursor") continue;
    calls.push_back({.harness = harness,
                     .tool = "mcp__quillstead__memory_add",
                     .identityKey = "agent_id",
                     .stampKey = "_quillstead_subagent"});
  }
  return calls;
}

}  // namespace quillstead
