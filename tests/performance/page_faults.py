"""Fails when a tool call touches more pages than it must: what is published is laid out for that
(cmake/toolchains/musl.ld).

    page_faults.py HOOK FLOOR

HOOK: the hook as it is published. FLOOR: the bench's CopiesStdin, made with the same C library. Both are
started in the same way, whose own faults so do not matter.
"""

import os
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "..", "bench", "measure"))

import counts  # noqa: E402  (found through the line above)
import payloads  # noqa: E402

RUNS = 20
# Where nothing is chosen anew for each run the floor has 7, a tool call 9: both can have two more.
MOST_MORE = 4


def faults(command, payload):
    """The least of some runs, since a page that the system has not read yet makes one more."""
    least = []
    for _ in range(RUNS):
        payload.seek(0)
        with open(os.devnull, "wb") as nothing:
            child = os.posix_spawn(command[0], command, {"HOME": "/"}, file_actions=[
                (os.POSIX_SPAWN_DUP2, payload.fileno(), 0), (os.POSIX_SPAWN_DUP2, nothing.fileno(), 1)])
            _, status, usage = os.wait4(child, 0)
        if status != 0:
            raise RuntimeError(f"{command[0]}: status {status}")
        least.append(usage.ru_minflt)
    return min(least)


def main(hook, floor):
    with tempfile.TemporaryFile() as payload:
        payload.write(payloads.tool_call(512).encode())
        payload.flush()
        more = faults([hook, *counts.PRETOOL], payload) - faults([floor], payload)
    print(f"{more} page faults more than the floor, of {MOST_MORE}")
    return 0 if more <= MOST_MORE else 1


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
