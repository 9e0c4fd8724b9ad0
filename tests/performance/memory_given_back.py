"""Fails when the published server gives memory back to the system again and again while it answers: it would
take a quarter longer (docs/decisions.md).

    memory_given_back.py SERVER
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

CARDS = 20
MOST = 10  # with musl's present allocator it is 83


def requests(directory):
    hello = {"protocolVersion": "2024-11-05", "capabilities": {}, "clientInfo": {"name": "codex", "version": "1"}}
    call = {"name": "memory_get_relevant",
            "arguments": {"prompt": "how do we roll back a release of the shop?", "cwd": str(directory)}}
    messages = [{"id": 1, "method": "initialize", "params": hello}, {"id": 2, "method": "tools/call", "params": call}]
    return "".join(json.dumps({"jsonrpc": "2.0"} | message) + "\n" for message in messages)


def main(server):
    with tempfile.TemporaryDirectory() as scratch:
        directory = pathlib.Path(scratch)
        memory = directory / "store" / "memory"
        memory.mkdir(parents=True, mode=0o700)
        for number in range(CARDS):
            body = f"Roll back the release of shop {number} with the last tag.\n" * 20
            (memory / f"{number}.md").write_text(f"# Rolling back shop {number}\n\n{body}")
        environment = {"HOME": scratch, "QUILLSTEAD_HOME": str(directory / "store"), "PATH": os.environ["PATH"]}
        table = directory / "calls"
        for _ in range(2):  # the first call makes the index
            ended = subprocess.run(["strace", "-f", "-o", table, "-e", "trace=munmap", server], text=True, check=True,
                                   input=requests(directory), env=environment, capture_output=True)
        if '"quillstead/replyKind":"cards"' not in ended.stdout:
            raise RuntimeError(f"no card came: {ended.stdout}")
        count = len(re.findall(r"\bmunmap\(", table.read_text()))
    print(f"memory was given back {count} times, of {MOST}")
    return 0 if count <= MOST else 1


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
