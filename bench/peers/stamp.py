"""The stamp on a sub-agent's call of the memory service's tools, as a user would script it."""

import json
import sys


def answer(text):
    try:
        payload = json.loads(text)
        tool, arguments, agent = payload["tool_name"], payload["tool_input"], payload["agent_id"]
        if not tool.startswith("mcp__quillstead__") or not agent.strip():
            return {}
        arguments["_quillstead_subagent"] = agent
    except (ValueError, KeyError, TypeError, AttributeError):
        return {}
    return {"hookSpecificOutput": {"hookEventName": "PreToolUse", "updatedInput": arguments}}


json.dump(answer(sys.stdin.buffer.read()), sys.stdout, ensure_ascii=False, separators=(",", ":"))
print()
