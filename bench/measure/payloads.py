"""The payloads that the runs are given: one JSON object each, of exactly the size asked for."""

import json

# Forty characters, the last of which takes an escape.
ESCAPED_LINE = "the quick brown fox jumps over the lazy\n"


def _compact(value):
    return json.dumps(value, separators=(",", ":"))


def _text(size):
    """Text that takes `size` bytes in a document, with one escape in forty characters."""
    lines, rest = divmod(size, len(_compact(ESCAPED_LINE)) - 2)
    return ESCAPED_LINE * lines + "x" * rest


def tool_call(size, directory="/home/user/project"):
    """A sub-agent's call of a tool of the memory service, with its text as long as it takes."""
    payload = {
        "session_id": "4f7c4e1c-3b60-4b0e-9a55-0d1c7f3a2b11",
        "transcript_path": "/home/user/.claude/projects/-home-user-project/4f7c4e1c.jsonl",
        "cwd": directory,
        "hook_event_name": "PreToolUse",
        "tool_name": "mcp__quillstead__memory_add",
        "agent_id": "a7f3c2",
        "agent_type": "reviewer",
        "tool_input": {"text": ""},
    }
    payload["tool_input"]["text"] = _text(size - len(_compact(payload)))
    return _compact(payload)


def prompt(directory="/home/user/project"):
    """A prompt of the usual size."""
    return _compact({
        "session_id": "4f7c4e1c-3b60-4b0e-9a55-0d1c7f3a2b11",
        "transcript_path": "/home/user/.claude/projects/-home-user-project/4f7c4e1c.jsonl",
        "cwd": directory,
        "hook_event_name": "UserPromptSubmit",
        "prompt": "Add a retry with a growing pause to the download step, and a test that shows it "
                  "gives up after five tries. Keep to the style of the other steps.",
    })
