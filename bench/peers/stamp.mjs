// The stamp on a sub-agent's call of the memory service's tools, as a user would script it.
import { readFileSync } from "node:fs";

function answer(text) {
  try {
    const payload = JSON.parse(text);
    if (!payload.tool_name.startsWith("mcp__quillstead__") || !payload.agent_id.trim()) return {};
    const updatedInput = { ...payload.tool_input, _quillstead_subagent: payload.agent_id };
    return { hookSpecificOutput: { hookEventName: "PreToolUse", updatedInput } };
  } catch {
    return {};
  }
}

process.stdout.write(JSON.stringify(answer(readFileSync(0, "utf8"))) + "\n");
