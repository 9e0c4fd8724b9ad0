"""Fails when a run of the hook costs more than 10 % over the committed figures, in instructions or
in system calls: counts, not times, so that a busy machine does not matter.

    guard.py HOOK SERVER RUN       checks one of the runs: pretool, recall, refusal
    guard.py HOOK SERVER --update  writes what is counted now into figures.txt

HOOK is the hook as it is shipped, SERVER the bench's AnswersBothTools.
"""

import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "..", "bench", "measure"))

import counts  # noqa: E402  (found through the line above)

FIGURES = os.path.join(HERE, "figures.txt")
HEADING = "# run  instructions  system calls  (written by: cmake --build BUILD --target refresh-figures)"
TOLERANCE = 1.10


def committed():
    with open(FIGURES, encoding="utf-8") as lines:
        rows = [line.split() for line in lines if not line.startswith("#")]
    return {row[0]: (int(row[1]), int(row[2])) for row in rows}


def counted(bench, run):
    command, payload, environment, wanted = run
    if wanted not in bench.run(command, payload, environment):
        raise RuntimeError(f"{' '.join(command)}: the answer lacks {wanted.decode()}")
    return (bench.least(bench.instructions, command, payload, environment),
            bench.least(bench.system_calls, command, payload, environment))


def judge(name, what, now, before):
    """Prints how the count stands. True when it has not grown too much."""
    change = 100 * (now / before - 1)
    print(f"{name}: {now} {what}, {before} committed ({change:+.1f} %)")
    if now * TOLERANCE < before:
        print("  much less than committed: refresh the figures, so that it stays so")
    if now <= before * TOLERANCE:
        return True
    print(f"  more than 10 % over: {name} has grown dearer")
    return False


def main(hook, server, wanted):
    with counts.Bench() as bench:
        runs = counts.hook_runs(bench, hook, server)
        if wanted == "--update":
            rows = [(name, *counted(bench, run)) for name, run in runs.items()]
            with open(FIGURES, "w", encoding="utf-8") as file:
                file.write("\n".join([HEADING, *("{:8} {:8} {:6}".format(*row) for row in rows)]) + "\n")
            return 0
        instructions, calls = counted(bench, runs[wanted])
    instructions_before, calls_before = committed()[wanted]
    sound = [judge(wanted, "instructions", instructions, instructions_before),
             judge(wanted, "system calls", calls, calls_before)]
    return 0 if all(sound) else 1


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
