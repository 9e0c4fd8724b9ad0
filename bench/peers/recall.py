"""Rules and memory for a prompt from an MCP server, as a user would script it: one server for each
tool, started with subprocess. Usage: recall.py <server>"""

import json
import subprocess
import sys


def request(number, method, parameters):
    return json.dumps({"jsonrpc": "2.0", "id": number, "method": method, "params": parameters})


def call(server, tool, arguments):
    lines = [
        request(1, "initialize", {
            "protocolVersion": "2024-11-05",
            "capabilities": {},
            "clientInfo": {"name": "script", "version": "1"},
        }),
        request(2, "tools/call", {"name": tool, "arguments": arguments}),
    ]
    run = subprocess.run([server], input="\n".join(lines) + "\n", text=True, capture_output=True,
                         timeout=2.5, check=True)
    for line in run.stdout.splitlines():
        message = json.loads(line)
        if message.get("id") == 2:
            return message["result"]["content"][0]["text"]
    raise ValueError("no reply")


payload = json.load(sys.stdin)
place = {key: payload[key] for key in ("cwd", "session_id", "transcript_path") if key in payload}
rules = call(sys.argv[1], "rules_get", {**place, "card": True, "card_head_ceiling": 10000})
memory = call(sys.argv[1], "memory_get_relevant", {"prompt": payload["prompt"], **place})
print(json.dumps({"hookSpecificOutput": {
    "hookEventName": "UserPromptSubmit", "additionalContext": rules + "\n\n" + memory}}))
