#!/usr/bin/env python3
"""`quillstead log` against figures computed here, on logs that are made up: with lines of others, cut
lines and large ones. QUILLSTEAD names the program.

    log_test.py [--megabytes N]     the size of the large log, 100 by default
"""

import argparse
import datetime
import json
import math
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = os.environ["QUILLSTEAD"]
MEGABYTES = 100
SLOTS = ["", "rules", "index", "recall"]
MISSES = ["rules=MISS:timeout", "rules=MISS:over-budget", "cards=MISS:declined",
          "cards=MISS:no-envelope", "shortcut=MISS:none-today", "index=MISS:no-span"]
FOREIGN = ["", " ", "hello", "2026-11-16T03:38:33.123+00:00", "2026-11-16T03:38:33.123+00:00 5ms",
           "2026-11-16T03:38:33.123+00:00 5ms rules=1",
           "2026-13-16T03:38:33.123+00:00 5ms rules=1 | parse 5 residual 0",
           "2026-11-16 03:38:33.123+00:00 5ms rules=1 | parse 5 residual 0",
           "2026-11-16T03:38:33.123+01:00 5ms rules=1 | parse 5 residual 0",
           "2026-11-16T03:38:33.123+00:00 5 rules=1 | parse 5 residual 0",
           "2026-11-16T03:38:33.123+00:00 -5ms rules=1 | parse -5 residual 0",
           "2026-11-16T03:38:33.123+00:00 5ms slot=pretool rules=1 | parse 5 residual 0",
           "2026-11-16T03:38:33.123+00:00 5ms slot=all rules=1 | parse 5 residual 0",
           "2026-11-16T03:38:33.123+00:00 5ms rules | parse 5 residual 0",
           "2026-11-16T03:38:33.123+00:00 5ms rules=\x1b[31m | parse 5 residual 0",
           "2026-11-16T03:38:33.123+00:00 5ms rules=1 | parse 5",
           "2026-11-16T03:38:33.123+00:00 5ms rules=1 | parse 5 residual",
           "2026-11-16T03:38:33.123+00:00 5ms rules=1 | parse 4 residual 0",
           "2026-11-16T03:38:33.123+00:00 5ms rules=1 | parse 5 residual 0 more 0",
           "2026-11-16T03:38:33.123+00:00 99999999999999999999ms rules=1 | parse 5 residual 0",
           "x" * 200_000, "\xff\xfe\x00"]


def line(chance, when):
    """One line of the hook's, with any outcome."""
    slot = chance.choice(SLOTS)
    fields = [f"slot={slot}"] if slot else []
    fields.append(chance.choice(["card=1", "card=pointer", "card=miss"]))
    fields.append(chance.choice(["rules=1", "rules=1", "rules=0"] + MISSES[:2]))
    fields.append(chance.choice(["cards=0", "cards=3", "cards=12"] + MISSES[2:4]))
    if chance.random() < 0.1:
        fields.append(chance.choice(MISSES[4:]))
    if chance.random() < 0.1:
        fields.append(f"trimmed={chance.randint(1, 9)}")
    stages = [("parse", chance.randint(0, 2))]
    stages.append(("rules", int(chance.lognormvariate(2, 0.8))))
    if slot in ("", "recall"):
        stages.append(("cards", int(chance.lognormvariate(2.5, 1.2))))
    stages += [("compose", chance.randint(0, 1)), ("write", 0)]
    total = sum(ms for _, ms in stages) + chance.choice([0, 0, 0, 1, 1, 2, -1])
    if chance.random() < 0.0005:
        stages[-1] = ("write", 60_000 + chance.randint(0, 100_000))
        total = sum(ms for _, ms in stages)
    total = max(total, 0)
    told = " ".join(f"{name} {ms}" for name, ms in stages)
    residual = total - sum(ms for _, ms in stages)
    stamp = when.strftime("%Y-%m-%dT%H:%M:%S.") + f"{when.microsecond // 1000:03d}+00:00"
    return f"{stamp} {total}ms {' '.join(fields)} | {told} residual {residual}"


def make_log(path, lines, seed, days=40, foreign=True, end=None):
    chance = random.Random(seed)
    end = end or datetime.datetime(2026, 11, 20)
    with open(path, "w", encoding="latin-1", newline="\n") as log:
        for number in range(lines):
            when = end - datetime.timedelta(days=days) * (1 - number / lines)
            log.write(line(chance, when) + "\n")
            if foreign and number % 97 == 0:
                log.write(FOREIGN[number // 97 % len(FOREIGN)] + "\n")
        if foreign:
            log.write(line(chance, end)[:-1])  # cut, without its end


def nearest_rank(values, percent):
    ordered = sorted(values)
    return ordered[max(math.ceil(percent / 100 * len(ordered)), 1) - 1]


def times(values):
    return {"median": nearest_rank(values, 50), "p95": nearest_rank(values, 95), "max": max(values)}


PATTERN = re.compile(r"(\d{4}-\d\d-\d\d)T(\d\d:\d\d:\d\d\.\d{3})\+00:00 (\d+)ms (?:slot=(rules|index|recall) )?(?!slot=)"
                     r"([!-~]+=[!-~]+(?: [!-~]+=[!-~]+)*) \| ((?:[a-z]+ \d+ )+)residual (-?\d+)")


def expected(path, since=None):
    """What `log --json` has to print."""
    with open(path, encoding="latin-1", newline="\n") as log:
        return expected_of(log.read(), since)


def expected_of(text, since=None):
    raw = text.split("\n")
    last = raw.pop()
    result = {"lines": len(raw) + bool(last), "foreign": int(bool(last)), "slots": {}}
    runs = {}
    for text in raw:
        match = PATTERN.fullmatch(text)
        stages = [] if not match else [(n, int(v)) for n, v in re.findall(r"([a-z]+) (\d+)", match[6])]
        try:
            when = datetime.datetime.fromisoformat(f"{match[1]}T{match[2]}") if match else None
        except ValueError:
            when = None
        if not when or int(match[3]) >= 2 ** 63 or sum(v for _, v in stages) + int(match[7]) != int(match[3]):
            result["foreign"] += 1
        elif not since or when >= since:
            runs.setdefault(match[4] or "all", []).append((int(match[3]), match[5].split(" "), stages))
    for slot, list_of_runs in runs.items():
        stages, misses = {}, {}
        for _, fields, of_run in list_of_runs:
            for name, value in of_run:
                stages.setdefault(name, []).append(value)
            for field in fields:
                if "=MISS:" in field:
                    misses[field] = misses.get(field, 0) + 1
        has = lambda pattern: sum(any(re.fullmatch(pattern, f) for f in fields) for _, fields, _ in list_of_runs)
        result["slots"][slot] = {
            "prompts": len(list_of_runs), "with_rules": has("rules=1"), "with_cards": has(r"cards=[1-9]\d*"),
            "trimmed": has(r"trimmed=[1-9]\d*"), "ms": times([ms for ms, _, _ in list_of_runs]),
            "stages": {name: times(values) for name, values in stages.items()}, "misses": misses}
    return result


class LogTest(unittest.TestCase):
    def setUp(self):
        self.stage = tempfile.TemporaryDirectory()
        self.addCleanup(self.stage.cleanup)
        self.log = str(pathlib.Path(self.stage.name) / "hook.log")
        self.environment = {"HOME": self.stage.name, "PATH": "/usr/bin:/bin", "TZ": "UTC",
                            "QUILLSTEAD_HOOK_LOG": self.log}

    def run_log(self, *arguments):
        return subprocess.run([PROGRAM, "log", *arguments], env=self.environment, text=True,
                              capture_output=True, timeout=300)

    def figures(self, *arguments):
        run = self.run_log("--json", *arguments)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        return json.loads(run.stdout)

    def test_tells_what_an_independent_computation_tells(self):
        for seed, lines in [(1, 1), (2, 2), (3, 19), (4, 20), (5, 21), (6, 3000), (7, 20_000)]:
            with self.subTest(lines=lines):
                make_log(self.log, lines, seed)
                self.assertEqual(self.figures(), expected(self.log))

    def test_counts_every_line_that_is_not_ours_and_stops_at_none(self):
        with open(self.log, "w", encoding="latin-1") as log:
            log.write("\n".join(FOREIGN) + "\n")
        figures = self.figures()
        self.assertEqual(figures, {"lines": len(FOREIGN), "foreign": len(FOREIGN), "slots": {}})

    def test_counts_only_what_is_as_young_as_asked_for(self):
        now = datetime.datetime.now(datetime.timezone.utc).replace(tzinfo=None)
        make_log(self.log, 4000, 8, days=40, end=now)
        for since, ago in [("7d", {"days": 7}), ("48h", {"hours": 48}), ("2w", {"weeks": 2}),
                           ("90m", {"minutes": 90}), ("1000000s", {"seconds": 1_000_000})]:
            with self.subTest(since=since):
                # Between a run's start and ours at most a few seconds go by; lines lie 14 minutes apart.
                bound = datetime.datetime.now(datetime.timezone.utc).replace(tzinfo=None) - datetime.timedelta(**ago)
                near = [expected(self.log, bound + datetime.timedelta(seconds=s)) for s in (0, 5)]
                self.assertIn(self.figures("--since", since), near)
                self.assertNotEqual(near[0]["slots"], expected(self.log)["slots"])

    def test_needs_little_memory_for_a_large_log(self):
        make_log(self.log, 60_000, 9, days=400)
        with open(self.log, "rb") as log:
            piece = log.read().rsplit(b"\n", 1)[0] + b"\n"
        times = MEGABYTES * 1_000_000 // len(piece) + 1
        with open(self.log, "wb") as log:
            for _ in range(times):
                log.write(piece)
        # Its whole address space, program included; a sanitizer's has no such bounds.
        limit = "unlimited" if os.environ.get("QUILLSTEAD_SANITIZED") == "true" else "32768"
        run = subprocess.run(["/bin/sh", "-c", f"ulimit -v {limit}; exec '{PROGRAM}' log --json"], text=True,
                             env=self.environment, capture_output=True, timeout=600)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        figures = json.loads(run.stdout)
        self.assertEqual(figures["lines"], times * piece.count(b"\n"))
        one = expected_of(piece.decode("latin-1"))
        self.assertEqual({slot: part["prompts"] for slot, part in figures["slots"].items()},
                         {slot: part["prompts"] * times for slot, part in one["slots"].items()})
        self.assertEqual({slot: part["ms"] for slot, part in figures["slots"].items()},
                         {slot: part["ms"] for slot, part in one["slots"].items()})

    def test_says_where_it_looked_when_there_is_no_log(self):
        run = self.run_log()
        self.assertEqual((run.returncode, run.stdout), (1, ""))
        self.assertIn(self.log, run.stderr)
        del self.environment["QUILLSTEAD_HOOK_LOG"]
        run = self.run_log()
        self.assertEqual(run.returncode, 1)
        self.assertIn("Library/Logs/quillstead-hook.log", run.stderr)
        if sys.platform == "linux":
            self.assertIn(".local/state/quillstead/hook.log", run.stderr)

    def test_names_each_place_once_when_there_is_no_log(self):
        del self.environment["QUILLSTEAD_HOOK_LOG"]
        home = pathlib.Path(self.stage.name)
        ours = home / ".local/state/quillstead/hook.log"
        (home / ".claude").mkdir()
        (home / ".claude/settings.json").write_text(json.dumps({"env": {"QUILLSTEAD_HOOK_LOG": str(ours)}}))
        self.assertEqual(self.run_log().stderr.count(str(ours)), 1)

    def test_reads_the_log_that_install_set_up_and_else_the_hooks_own(self):
        home = pathlib.Path(self.stage.name)
        del self.environment["QUILLSTEAD_HOOK_LOG"]
        places = [home / "Library/Logs/quillstead-hook.log"]
        if sys.platform == "linux":
            places.append(home / ".local/state/quillstead/hook.log")
        for lines, place in enumerate(places, start=1):
            place.parent.mkdir(parents=True)
            make_log(place, lines, 1, foreign=False)
            self.assertEqual(self.figures()["lines"], lines)

    def test_takes_a_directory_and_a_pipe_for_no_log(self):
        os.mkdir(self.log)
        self.assertEqual(self.run_log().returncode, 1)
        os.rmdir(self.log)
        os.mkfifo(self.log)
        self.assertEqual(self.run_log().returncode, 1)

    def test_refuses_an_age_that_makes_no_sense(self):
        make_log(self.log, 1, 1)
        for age in ["", "7", "d", "-7d", "7 d", "7y", "7D", "1.5h", "999999999d"]:
            with self.subTest(age=age):
                run = self.run_log("--since", age)
                self.assertEqual((run.returncode, run.stdout), (2, ""))
                self.assertIn("--since", run.stderr)
        for conflict in (["--follow", "--json"], ["--follow", "--html", "x"]):
            self.assertEqual(self.run_log(*conflict).returncode, 2)

    def test_tells_it_to_people(self):
        with open(self.log, "w", encoding="utf-8") as log:
            log.write("2026-11-16T03:38:33.123+00:00 1247ms slot=recall card=1 rules=1 cards=3 trimmed=1 "
                      "shortcut=MISS:none | parse 0 rules 12 cards 1230 compose 0 write 0 residual 5\n"
                      "2026-11-18T03:38:33.123+00:00 47ms cards=MISS:timeout | parse 0 residual 47\nfoo\n")
        text = self.run_log().stdout
        for part in (": 3 lines, 2026-11-16 to 2026-11-18, 1 of them incomplete or not the hook's\n",
                     "Slot recall: 1 prompt, 1 with rules, 1 with cards, 1 with cards cut\n",
                     "  whole run        1,247     1,247     1,247\n", "  cards=MISS:timeout  1\n",
                     "Rules and memory together: 1 prompt, 0 with rules"):
            self.assertIn(part, text)
        self.assertNotIn("\x1b", text)

    def test_follows_a_log_that_is_appended_to_and_replaced(self):
        make_log(self.log, 3, 1, foreign=False)
        follower = subprocess.Popen([PROGRAM, "log", "--follow"], env=self.environment, text=True,
                                    stdout=subprocess.PIPE, bufsize=1)
        self.addCleanup(follower.wait)
        self.addCleanup(follower.kill)
        self.addCleanup(follower.stdout.close)
        self.wait_until_reading(follower.pid)
        with open(self.log, "a", encoding="utf-8") as log:
            log.write("2026-11-16T03:38:33.123+00:00 1047ms slot=recall rules=1 cards=2 trimmed=1 ")
            log.flush()
            log.write("shortcut=MISS:none | parse 0 residual 1047\n")
        self.assertEqual(follower.stdout.readline(),
                         "03:38:33  recall    1,047 ms  rules, 2 cards, 1 cut, shortcut=MISS:none\n")
        os.rename(self.log, self.log + ".old")
        with open(self.log, "w", encoding="utf-8") as log:
            log.write("2026-11-16T03:38:34.123+00:00 7ms rules=0 | parse 0 residual 7\n\x1b]0;x\x07\n")
        self.assertEqual(follower.stdout.readline(), "03:38:34  all           7 ms  nothing\n")
        self.assertEqual(follower.stdout.readline(), "not the hook's: ?]0;x?\n")
        with open(self.log, "w", encoding="utf-8") as log:
            log.write("x\n")
        self.assertEqual(follower.stdout.readline(), "not the hook's: x\n")

    def wait_until_reading(self, process):
        """Until it has opened the log, and has gone to its end before anything is appended."""
        import time
        for _ in range(200):
            time.sleep(0.02)
            run = subprocess.run(["sh", "-c", f"ls -l /proc/{process}/fd 2>/dev/null"], text=True, capture_output=True)
            if sys.platform != "linux" or "hook.log" in run.stdout:
                break
        time.sleep(0.3 if sys.platform == "linux" else 2)

    def test_ends_when_nobody_reads_what_it_follows(self):
        make_log(self.log, 3, 1, foreign=False)
        follower = subprocess.Popen([PROGRAM, "log", "--follow"], env=self.environment, stdout=subprocess.PIPE)
        follower.stdout.close()
        self.assertIsNotNone(follower.wait(timeout=30))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--megabytes", type=int, default=100)
    options, rest = parser.parse_known_args()
    MEGABYTES = options.megabytes
    unittest.main(argv=[sys.argv[0], *rest])
