"""Fails when a published program asks the system for memory, or gives it back, again and again while it
answers: the server would take a quarter longer, the hook a tenth (docs/decisions.md).

    calls_for_memory.py SERVER HOOK
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

CARDS = 20
# With musl's present allocator memory is given back 83 times by the server, once by the hook. When the server does
# not take its first pages at once, it asks for memory 15 times.
MOST = {"server": {"brk": 12, "munmap": 10}, "hook": {"brk": 2, "munmap": 0}}


def requests(directory):
    hello = {"protocolVersion": "2024-11-05", "capabilities": {}, "clientInfo": {"name": "codex", "version": "1"}}
    call = {"name": "memory_get_relevant",
            "arguments": {"prompt": "how do we roll back a release of the shop?", "cwd": str(directory)}}
    messages = [{"id": 1, "method": "initialize", "params": hello}, {"id": 2, "method": "tools/call", "params": call}]
    return "".join(json.dumps({"jsonrpc": "2.0"} | message) + "\n" for message in messages)


def calls(program, question, environment, expected):
    """How often the program makes each of the calls for memory while it answers."""
    with tempfile.NamedTemporaryFile("r") as trace:
        ended = subprocess.run(["strace", "-f", "-o", trace.name, "-e", "trace=brk,munmap", *program], text=True,
                               check=True, input=question, env=environment, capture_output=True)
        if expected not in ended.stdout:
            raise RuntimeError(f"another answer came: {ended.stdout}")
        lines = trace.read()
    return {call: len(re.findall(rf"\b{call}\(", lines)) for call in ("brk", "munmap")}


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
            made = calls([server], requests(directory), environment, '"quillstead/replyKind":"cards"')
        return made


def of_hook(hook):
    call = {"cwd": "/", "hook_event_name": "PreToolUse", "tool_name": "mcp__quillstead__memory_add",
            "agent_id": "a7f3c2", "agent_type": "reviewer", "tool_input": {"text": "x" * 250}}
    return calls([hook, "--harness", "claude-code", "--slot", "pretool"], json.dumps(call),
                      {"PATH": os.environ["PATH"]}, '"_quillstead_subagent":"a7f3c2"')


def main(server, hook):
    good = True
    for name, made in (("server", of_server(server)), ("hook", of_hook(hook))):
        for call, count in made.items():
            print(f"{name}: {call} {count} times, of {MOST[name][call]}")
            good = good and count <= MOST[name][call]
    return 0 if good else 1


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
