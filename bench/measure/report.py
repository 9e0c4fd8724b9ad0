"""Measures everything and prints it as Markdown. Run by scripts/bench, which builds what it needs.

BUILD: the build directory. PEERS: bench/peers with its node modules. PUBLISHED: a directory of the programs
as they are published and of floors made with the same C library, to measure these; those in BUILD are then
measured beside them. BEFORE: a directory of older programs, to measure these beside them too. PAGE: the page
to write the figures of the published programs into. PART: of the rounds, to try it out.
"""

import argparse
import os
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile
from dataclasses import dataclass, field

import counts
import page
import parts
import payloads
import runs

HERE = os.path.dirname(os.path.abspath(__file__))
SIZES = {"0.5 KB": 512, "10 KB": 10_000, "1 MB": 1_000_000, "100 MB": 100_000_000}
# Rounds of the hook beside its floor, and of both beside the peers.
ROUNDS = {"0.5 KB": (1000, 20), "10 KB": (1000, 20), "1 MB": (200, 10), "100 MB": (9, 2)}
RECALL_ROUNDS = (500, 10)
CARDS = 1000
HOOK, FLOOR = "quillstead-hook", "floor"
FLOOR_OF_SYSTEM = "floor, the system's C library"
OF_SYSTEM = "-of-system"  # ends the names of the programs in BUILD when others are measured
OF_BEFORE = "-of-before"  # and those in BEFORE
HOOK_OF_SYSTEM = f"{HOOK}, the system's compiler and C library"
FAULT_ROUNDS = 200
COUNTS_HEADING = ("run", "instructions in user space", "system calls, children's too",
                  "page faults, children's too", "peak memory")
# What is wanted, without and with PUBLISHED.
WANTED = {"pretool": (1.20, 1.35), "recall": (1.12, 1.40), "size": (1.5e6, 0.75e6), "speed": (400, 463)}


@dataclass
class Place:
    """Where things are, and what has been found out so far."""
    programs: str
    peers: str
    work: str
    environment: dict
    is_published: bool
    part: float
    machine: str
    targets: list = field(default_factory=list)
    times: list = field(default_factory=list)
    counts: list = field(default_factory=list)

    def program(self, name):
        return os.path.join(self.programs, name)

    def hook(self, *arguments):
        return [self.program(HOOK), *arguments]

    def floors(self, name, *arguments):
        """The floor, and with published programs the same made with the system's C library."""
        all_floors = {FLOOR: [self.program(name), *arguments]}
        if self.is_published:
            all_floors[FLOOR_OF_SYSTEM] = [self.program(name + OF_SYSTEM), *arguments]
        return all_floors

    def wanted(self, what):
        return WANTED[what][self.is_published]

    def file(self, name, content):
        path = os.path.join(self.work, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(content)
        return path

    def has(self, name):
        return os.path.exists(self.program(name))

    def alternate(self, rounds, payload, commands, more=None, **ways):
        rounds = max(2, round(rounds * self.part))
        return runs.alternate([self.program("TimesRuns")], rounds, payload, commands,
                              self.environment | (more or {}), self.work, **ways)

    def target(self, what, wanted, figure, met):
        judged = "met" if met else "**not met**"
        self.targets.append((what, wanted, figure, judged if wanted else ""))


def table(heading, rows):
    print("\n| " + " | ".join(heading) + " |\n|" + " --- |" * len(heading))
    for row in rows:
        print("| " + " | ".join(str(cell) for cell in row) + " |")


def shown(seconds):
    for unit, size in (("s", 1), ("ms", 1e-3), ("µs", 1e-6)):
        if seconds >= size:
            return f"{seconds / size:.3g} {unit}"
    return f"{seconds / 1e-9:.3g} ns"


def interpreter(name):
    """The interpreter itself, not a script that looks for it."""
    ask = {"python3": ["python3", "-c", "import sys; print(sys.executable)"],
           "node": ["node", "-p", "process.execPath"]}
    return subprocess.run(ask[name], stdout=subprocess.PIPE, check=True, text=True).stdout.strip()


def stamp_peers(place):
    script = lambda name: os.path.join(place.peers, name)  # noqa: E731
    return {"jq": [shutil.which("jq"), "-c", "-f", script("stamp.jq")],
            "python3": [interpreter("python3"), script("stamp.py")],
            "node": [interpreter("node"), script("stamp.mjs")]}


def time_rows(what, times, floor):
    return [(what, name, shown(one.median), shown(one.least),
             f"{runs.ratio(one, floor):.2f}" if len(one.wall) == len(floor.wall) else
             f"{one.median / floor.median:.0f}")
            for name, one in times.items()]


def pretool(place):
    rows = []
    for size, count in SIZES.items():
        print(f"pre-tool run, {size}", file=sys.stderr)
        payload = place.file("payload.json", payloads.tool_call(count))
        pair = place.floors("CopiesStdin") | {HOOK: place.hook(*counts.PRETOOL)}
        rounds, peer_rounds = ROUNDS[size]
        times = place.alternate(rounds, payload, pair)
        rows += time_rows(f"pre-tool, {size}", times, times[FLOOR])
        peers = place.alternate(peer_rounds, payload, {HOOK: pair[HOOK]} | stamp_peers(place))
        rows += time_rows(f"pre-tool, {size}", {n: t for n, t in peers.items() if n != HOOK}, times[FLOOR])
        if size == "0.5 KB":
            over_floor = runs.ratio(times[HOOK], times[FLOOR])
            place.target("pre-tool run, 0.5 KB, wall time over the copying floor",
                         f"≤ {place.wanted('pretool'):.2f}", f"{over_floor:.2f}",
                         over_floor <= place.wanted("pretool"))
            for name, one in peers.items():
                if name == HOOK:
                    continue
                faster = runs.ratio(one, peers[HOOK])
                place.target(f"pre-tool run, 0.5 KB, times faster than {name}", "≥ 50",
                             f"{faster:.0f}", faster >= 50)
        if size == "100 MB":
            rows += throughput(place, payload, count, pair)
    print_times(place, "Pre-tool run", rows)


def print_times(place, heading, rows):
    print(f"\n### {heading}")
    table(("run", "program", "median", "least", "times the floor"), rows)
    place.times += rows


def throughput(place, payload, size, pair):
    """The large payload once more from a file and to nowhere: what the process itself takes."""
    if place.is_published:
        pair = pair | {HOOK_OF_SYSTEM: [place.program(HOOK + OF_SYSTEM), *counts.PRETOOL]}
    alone = place.alternate(ROUNDS["100 MB"][0], payload, pair, input_by="file", output_by="null")
    hook = alone[HOOK]
    speed, memory, wanted = size / hook.median / 1e6, hook.peak_memory / size, place.wanted("speed")
    place.target("100 MB payload from exec to exit, file to /dev/null", f"≥ {wanted} MB/s",
                 f"{speed:.0f} MB/s (best run {size / hook.least / 1e6:.0f}; "
                 f"user {shown(hook.user)}, kernel {shown(hook.kernel)})", speed >= wanted)
    if place.is_published:
        faster = runs.ratio(alone[HOOK_OF_SYSTEM], hook)
        place.target("the same, times as fast as the system's compiler makes it", "≥ 1, within 5 %",
                     f"{faster:.2f}", faster >= 0.95)
    place.target("100 MB payload, peak memory over the payload", "≤ 2.2", f"{memory:.2f}",
                 memory <= 2.2)
    return time_rows("pre-tool, 100 MB, file to /dev/null", alone, alone[FLOOR])


def recall(place):
    print("recall run", file=sys.stderr)
    server = place.program("AnswersBothTools")
    payload = place.file("prompt.json", payloads.prompt(place.work))
    served = {"QUILLSTEAD_MCP_BIN": server}
    pair = place.floors("StartsServerTwice", server) | {HOOK: place.hook(*counts.RECALL)}
    rounds, peer_rounds = RECALL_ROUNDS
    times = place.alternate(rounds, payload, pair, served)
    over_floor = runs.ratio(times[HOOK], times[FLOOR])
    place.target("recall run over the two-child floor, minimal server",
                 f"≤ {place.wanted('recall'):.2f}", f"{over_floor:.2f}", over_floor <= place.wanted("recall"))
    peers = {"python3, subprocess": [interpreter("python3"), f"{place.peers}/recall.py", server],
             "node, official SDK": [interpreter("node"), f"{place.peers}/recall.mjs", server]}
    rows = time_rows("recall, minimal server", times | place.alternate(peer_rounds, payload, peers, served),
                     times[FLOOR])
    rows += recall_from_the_real_server(place)
    print_times(place, "Recall run", rows)


def recall_from_the_real_server(place):
    server = place.program("quillstead-mcp")
    if not os.path.exists(server):
        print("quillstead-mcp is not built: its recall run is left out", file=sys.stderr)
        return []
    store = os.path.join(place.work, "store")
    subprocess.run([sys.executable, os.path.join(HERE, "..", "server", "make-store.py"), store,
                    str(CARDS)], check=True, stdout=subprocess.DEVNULL)
    served = {"QUILLSTEAD_MCP_BIN": server, "QUILLSTEAD_HOME": store,
              "XDG_CACHE_HOME": os.path.join(place.work, "cache")}
    payload = place.file("prompt.json", payloads.prompt(place.work))
    pair = {FLOOR: [place.program("StartsServerTwice"), server], HOOK: place.hook(*counts.RECALL)}
    place.alternate(20, payload, pair, served)  # the first ones fill the server's index
    times = place.alternate(RECALL_ROUNDS[0] // 5, payload, pair, served)
    run = f"recall, quillstead-mcp with {CARDS:,} cards"
    if place.is_published:
        beside(place, payload, served, OF_SYSTEM, f"{run}, over the programs of the system's compiler", None)
    if place.has(HOOK + OF_BEFORE):
        beside(place, payload, served, OF_BEFORE, f"{run}, over the programs before", 0.5)
    return time_rows(run, times, times[FLOOR])


def beside(place, payload, served, others, what, wanted):
    """The same run with hook and server beside other ones, which have an index of their own, in turn."""
    cache = os.path.join(place.work, "cache" + others)
    kinds = {"": {}, others: {"XDG_CACHE_HOME": cache} if others == OF_BEFORE else {}}
    walls = {kind: [] for kind in kinds}
    for turn in range(11):
        for kind, more in kinds.items():
            command = [place.program(HOOK + kind), *counts.RECALL]
            served = served | {"QUILLSTEAD_MCP_BIN": place.program("quillstead-mcp" + kind)}
            wall = place.alternate(20, payload, {HOOK: command}, served | more)[HOOK].wall
            if turn > 0:  # the first fills the index
                walls[kind] += wall
    ratio = statistics.median(one / other for one, other in zip(*walls.values()))
    ours, theirs = (shown(statistics.median(wall)) for wall in walls.values())
    place.target(what, f"≤ {wanted}" if wanted else "", f"{ratio:.2f} ({ours}, {theirs})", wanted is not None and ratio <= wanted)


def refusal(place):
    print("refusal run", file=sys.stderr)
    payload = place.file("prompt.json", payloads.prompt())
    times = place.alternate(ROUNDS["0.5 KB"][0], payload, {
        **place.floors("CopiesStdin"), HOOK: place.hook(*counts.REFUSAL)})
    print_times(place, "Refusal run", time_rows("refusal", times, times[FLOOR]))


def counted(place):
    """Counts of the runs with small payloads, of the floors beside them and of the peers."""
    print("counts", file=sys.stderr)
    rows = []
    with counts.Bench() as bench:
        small = payloads.tool_call(512, bench.directory)
        programs = counts.hook_runs(bench, place.hook()[0], place.program("AnswersBothTools"))
        floor = bench.place(place.program("CopiesStdin"))
        two_children = bench.place(place.program("StartsServerTwice"))
        programs["floor: copies 0.5 KB"] = ([floor], small, {}, b"")
        programs["floor: starts the server twice"] = (
            [two_children, "./AnswersBothTools"], small, {}, b"")
        full = {f"VARIABLE_{number}": "/some/where/or/other" for number in range(50)}
        programs["pretool, 50 more variables"] = (*programs["pretool"][:2], full, b"")
        for name, command in stamp_peers(place).items():
            programs[f"{name}: stamps 0.5 KB"] = (command, small, {}, b"")
        for name, (command, payload, environment, _) in programs.items():
            rows.append(count_row(place, bench, name, command, payload, environment))
    print("\n### Counts")
    table(COUNTS_HEADING, rows)
    place.counts = rows


def count_row(place, bench, name, command, payload, environment):
    is_peer = os.path.isabs(command[0])
    instructions = None if is_peer else bench.least(bench.instructions, command, payload, environment)
    if name == "pretool":
        place.target("pre-tool run, 0.5 KB, instructions in user space", "≤ 120,000",
                     f"{instructions:,}", instructions <= 120_000)
    variables = {"PATH": "/usr/bin:/bin", "HOME": "/", "QUILLSTEAD_HOOK_LOG": "log"} | environment
    timer, payload_file = place.program("TimesRuns"), place.file("counted.json", payload)
    once = runs.alternate([timer], 5, payload_file, {name: command}, variables, bench.directory)[name]
    if name == "pretool" and place.is_published:
        count_faults(place, lambda *start: runs.alternate(
            [*start, timer], FAULT_ROUNDS, payload_file, {name: command}, variables, bench.directory)[name].faults)
    return (name, "" if is_peer else f"{instructions:,}",
            bench.least(bench.system_calls, command, payload, environment),
            once.page_faults, f"{once.peak_memory / 1e6:.1f} MB")


def count_faults(place, faults):
    """Where stack and heap begin is chosen anew for each run, so the count differs; `setarch -R` keeps them."""
    found, fixed = faults(), statistics.median(faults("setarch", "-R"))
    median = statistics.median(found)
    place.target("pre-tool run, 0.5 KB, page faults", "≤ 12",
                 f"{median:.0f} ({min(found)} to {max(found)} in {len(found)} runs; {fixed:.0f} where stack and heap "
                 "always begin at the same place)", median <= 12)


def sizes(place):
    binary = runs.size_without_symbols(place.hook()[0], place.work)
    wanted = place.wanted("size")
    place.target("hook, stripped", f"≤ {wanted / 1e6:.2f} MB", f"{binary / 1e6:.3f} MB", binary <= wanted)


def in_process(place):
    print("the parts, in one process", file=sys.stderr)
    measured = parts.measured(place.program("measures-parts"), place.part)
    rows = [(name, f"{points[0][0]:,} to {points[-1][0]:,}", shown(points[0][1]),
             shown(points[-1][1]), f"{parts.exponent(points):.2f}")
            for name, points in measured.items()]
    print("\n### Parts, in one process")
    table(("part", "sizes", "smallest", "largest", "fitted exponent"), rows)
    for kind in ("text", "values"):
        ours, nothing = dict(measured[f"read/{kind}"]), dict(measured[f"parseIntoNothing/{kind}"])
        times = [ours[size] / nothing[size] for size in ours]
        place.target(f"reading JSON, against Boost.JSON parsing without building values, {kind}", "≤ 2",
                     f"{min(times):.2f} to {max(times):.2f}", max(times) <= 2)
    exponents = {name: parts.exponent(points) for name, points in measured.items()
                 if not name.startswith("parseIntoNothing")}
    steepest = max(exponents, key=exponents.get)
    place.target("growth: the largest fitted exponent", "linear: ≤ 1.1, caches allowed for",
                 f"{exponents[steepest]:.2f} ({steepest})", exponents[steepest] <= 1.1)


def machine():
    with open("/proc/cpuinfo", encoding="utf-8") as lines:
        model = next((line.split(":")[1].strip() for line in lines if "model name" in line), "?")
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30
    return (f"{os.cpu_count()} cores of {model}, {memory:.0f} GiB, {platform.system()} "
            f"{platform.release().split('-')[0]}, load {os.getloadavg()[0]:.1f} at the start.")


def installed(build, work, published, before):
    """A directory with copies of all programs, as an installation makes them: what a linker wrote
    lies in the system's cache in smaller pieces, and starts some 5 % slower."""
    programs = os.path.join(work, "programs")
    os.mkdir(programs)
    for built in ("bench", "bin"):
        for entry in os.scandir(os.path.join(build, built)):
            if entry.is_file() and os.access(entry, os.X_OK):
                shutil.copy(entry, programs)
    for entry in os.scandir(published) if published else ():
        own = os.path.join(programs, entry.name)
        os.replace(own, own + OF_SYSTEM)
        shutil.copy(entry, programs)
    for name in (HOOK, "quillstead-mcp") if before else ():
        shutil.copy(os.path.join(before, name), os.path.join(programs, name + OF_BEFORE))
    return programs


def main():
    usage, _, description = __doc__.partition("\n\n")
    parser = argparse.ArgumentParser(description=f"{usage}\n\n{description}",
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", metavar="BUILD")
    parser.add_argument("peers", metavar="PEERS")
    for name in ("published", "before", "page"):
        parser.add_argument(f"--{name}", metavar=name.upper())
    parser.add_argument("--part", metavar="PART", type=float, default=1)
    given = parser.parse_args()
    work = tempfile.mkdtemp(prefix="quillstead-bench-")
    environment = {"PATH": os.environ["PATH"], "HOME": work,
                   "QUILLSTEAD_HOOK_LOG": os.path.join(work, "log")}
    place = Place(installed(given.build, work, given.published, given.before), os.path.abspath(given.peers), work,
                  environment, given.published is not None, given.part, machine())
    try:
        print(place.machine)
        for measure in (pretool, recall, refusal, counted, sizes, in_process):
            measure(place)
        print("\n### Targets")
        table(("what", "target", "measured", ""), place.targets)
        if given.page:
            page.write(given.page, place.machine, place.targets, place.times, COUNTS_HEADING, place.counts)
    finally:
        shutil.rmtree(work)


if __name__ == "__main__":
    main()
