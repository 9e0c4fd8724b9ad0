"""Times whole processes, in turn, and sums up what they took."""

import os
import statistics
import subprocess
from dataclasses import dataclass


@dataclass
class Times:
    """What the runs of one command took. Times in seconds, memory in bytes."""
    wall: list
    faults: list
    peak_memory: int
    user: float
    kernel: float

    @property
    def page_faults(self):
        return int(statistics.median(self.faults))

    @property
    def median(self):
        return statistics.median(self.wall)

    @property
    def least(self):
        return min(self.wall)


def alternate(timer, rounds, payload, commands, environment, directory, input_by="pipe",
              output_by="pipe"):
    """Runs the commands (name to argument list) one after the other, `rounds` times, with the file
    `payload` as their input. Gives name to Times. `timer`: the program TimesRuns, and what starts it."""
    arguments = [*timer, str(rounds), payload, input_by, output_by]
    for command in commands.values():
        arguments += ["--", *command]
    ended = subprocess.run(arguments, env=environment, cwd=directory, stdout=subprocess.PIPE,
                           check=True, text=True)
    rows = [[int(field) for field in line.split()] for line in ended.stdout.splitlines()]
    return {name: _times(name, [row[1:] for row in rows if row[0] == number])
            for number, name in enumerate(commands)}


def _times(name, rows):
    if any(status != 0 for *_, status, _ in rows):
        raise RuntimeError(f"a run of {name} failed")
    wall, faults, memory, user, kernel, _, _ = zip(*rows)
    return Times(wall=[nanoseconds / 1e9 for nanoseconds in wall],
                 faults=list(faults),
                 peak_memory=max(memory) * 1024,
                 user=statistics.median(user) / 1e6,
                 kernel=statistics.median(kernel) / 1e6)


def ratio(times, floor):
    """How many times as long as the floor's the runs took: the median over the rounds, each round
    compared with itself, so that a machine that is slower for a while slows both."""
    return statistics.median(ours / theirs for ours, theirs in zip(times.wall, floor.wall))


def size_without_symbols(program, directory):
    """The program's size in bytes once it is stripped."""
    stripped = os.path.join(directory, "stripped")
    subprocess.run(["strip", "-o", stripped, program], check=True)
    return os.path.getsize(stripped)
