"""Fails when a published program gives memory back to the system again and again while it answers: the server
would take a quarter longer, the hook a tenth (docs/decisions.md).

    memory_given_back.py SERVER HOOK
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

CARDS = 20
MOST = {"server": 10, "hook": 0}  # with musl's present allocator it is 83 and 1


def requests(directory):
    hello = {"protocolVersion": "2024-11-05", "capabilities": {}, "clientInfo": {"name": "codex", "version": "1"}}
    call = {"name": "memory_get_relevant",
            "arguments": {"prompt": "how do we roll back a release of the shop?", "cwd": str(directory)}}
    messages = [{"id": 1, "method": "initialize", "params": hello}, {"id": 2, "method": "tools/call", "params": call}]
    return "".join(json.dumps({"jsonrpc": "2.0"} | message) + "\n" for message in messages)


def given_back(program, question, environment, expected):
    """How often the program gives memory back while it answers."""
    with tempfile.NamedTemporaryFile("r") as calls:
        ended = subprocess.run(["strace", "-f", "-o", calls.name, "-e", "trace=munmap", *program], text=True,
                               check=True, input=question, env=environment, capture_output=True)
        if expected not in ended.stdout:
            raise RuntimeError(f"another answer came: {ended.stdout}")
        return len(re.findall(r"\bmunmap\(", calls.read()))


def of_server(server):
    with tempfile.TemporaryDirectory() as scratch:
        directory = pathlib.Path(scratch)
        memory = directory / "store" / "memory"
        memory.mkdir(parents=True, mode=0o700)
        for number in range(CARDS):
            body = f"Roll back the release of shop {number} with the last tag.\n" * 20
            (memory / f"{number}.md").write_text(f"# Rolling back shop {number}\n\n{body}")
        environment = {"HOME": scratch, "QUILLSTEAD_HOME": str(directory / "store"), "PATH": os.environ["PATH"]}
        for _ in range(2):  # the first call makes the index
            count = given_back([server], requests(directory), environment, '"quillstead/replyKind":"cards"')
        return count


def of_hook(hook):
    call = {"cwd": "/", "hook_event_name": "PreToolUse", "tool_name": "mcp__quillstead__memory_add",
            "agent_id": "a7f3c2", "agent_type": "reviewer", "tool_input": {"text": "x" * 250}}
    return given_back([hook, "--harness", "claude-code", "--slot", "pretool"], json.dumps(call),
                      {"PATH": os.environ["PATH"]}, '"_quillstead_subagent":"a7f3c2"')


def main(server, hook):
    counts = {"server": of_server(server), "hook": of_hook(hook)}
    for name, count in counts.items():
        print(f"the {name} gave memory back {count} times, of {MOST[name]}")
    return 0 if all(count <= MOST[name] for name, count in counts.items()) else 1


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
