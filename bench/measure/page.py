"""Writes what was measured of the published programs into a page, between two marks."""

import re
import time

BEGIN, END = "<!-- written by scripts/bench -->", "<!-- end of what scripts/bench wrote -->"
# The parts in one process are those of the system's compiler, and have a table of their own on the page.
_not_of_published = ("reading JSON", "growth")
_names = {"pretool": "pre-tool, 0.5 KB", "recall": "recall, minimal server",
          "pretool, 50 more variables": "the same with 50 more environment variables",
          "floor: starts the server twice": "floor: starts the minimal server twice"}


def _table(heading, rows):
    lines = ["| " + " | ".join(heading) + " |", "|" + " --- |" * len(heading)]
    return "\n".join(lines + ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows])


def _without_repeats(rows):
    """The rows with the first cell empty where it is that of the row above."""
    last = None
    for first, *others in rows:
        yield ("" if first == last else first, *others)
        last = first


def section(machine, targets, times, counts_heading, counts):
    ours = [(run, *(f"**{cell}**" if name == "quillstead-hook" else cell for cell in (name, median, ratio)))
            for run, name, median, _, ratio in times]
    counted = [(re.sub("^(jq|python3|node): .*", r"\1", _names.get(name, name)), *figures) for name, *figures in counts]
    counted.sort(key=lambda row: row[0] in ("jq", "python3", "node"))
    return "\n\n".join([
        f"Measured on {time.strftime('%-d %B %Y')}: {machine}",
        _table(("what", "target", "measured", ""), [row for row in targets if not row[0].startswith(_not_of_published)]),
        _table(("run", "program", "median", "times the floor"), _without_repeats(ours)),
        _table(counts_heading, counted)])


def write(path, *measured):
    with open(path, encoding="utf-8") as file:
        before, _, rest = file.read().partition(BEGIN)
    _, mark, after = rest.partition(END)
    if not mark:
        raise SystemExit(f"{path} has no {BEGIN} with {END} behind it")
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"{before}{BEGIN}\n\n{section(*measured)}\n\n{END}{after}")
