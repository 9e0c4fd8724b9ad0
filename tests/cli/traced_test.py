#!/usr/bin/env python3
"""`quillstead` under strace: what each command opens, writes and connects to; killed at each step of a
write; and stopped in the middle of one, while somebody else changes the file. QUILLSTEAD names the
program."""

import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
from install_test import FILES, HARNESSES, PROGRAM, TOML, Home, foreign, our_handlers, parsed

LEFTOVER = ".quillstead-new-"


def setUpModule():
    if not shutil.which("strace"):
        raise unittest.SkipTest("needs strace")
    if os.environ.get("QUILLSTEAD_SANITIZED") == "true":
        raise unittest.SkipTest("a sanitizer cannot be traced")


def prepared(home):
    for name, (_, file, keys) in FILES.items():
        if name != "opencode servers":
            home.write(file, json.dumps(foreign(keys), indent=2).encode())
    home.write(TOML[1], b'model = "x"\n')


def strace(home, options, arguments):
    return ["strace", "-f", "-qq", "-o", str(home.root.parent / "trace"), *options, str(PROGRAM), *arguments]


def has_nameless_files(directory):
    try:
        os.close(os.open(directory, os.O_TMPFILE | os.O_WRONLY))
        return True
    except OSError:
        return False


class Surroundings(unittest.TestCase):
    """Each command touches what it is there for, and nothing else."""

    CALLS = ("socket,connect,open,openat,creat,mkdir,mkdirat,unlink,unlinkat,rename,renameat,renameat2,link,"
             "linkat,symlink,symlinkat,rmdir,chmod,fchmodat,chown,truncate")
    STORE = [".quillstead", ".cache"]
    SETTINGS = [".claude", ".codex", ".cursor", ".config"]
    STATE = [".local"]

    # The command, where it may write, and where it may read besides.
    COMMANDS = [
        (["install", *HARNESSES], SETTINGS + STATE + [".quillstead"], []),
        (["install", "--dry-run", *HARNESSES], [], SETTINGS + STATE),
        (["uninstall", *HARNESSES], SETTINGS + STATE, STORE),
        (["doctor", *HARNESSES], [".cache"], SETTINGS + STATE + STORE + ["work", ".profile"]),
        (["doctor", "--json", *HARNESSES], [".cache"], SETTINGS + STATE + STORE + ["work", ".profile"]),
        (["log"], [], STATE + [".claude", "Library"]),
        (["log", "--json", "--since", "7d"], [], STATE + [".claude", "Library"]),
        (["log", "--html", "page.html"], ["work/page.html"], STATE + [".claude", "Library"]),
        (["recall", "tea"], [".cache"], STORE + STATE + ["work"]),
        (["trust"], [".quillstead"], ["work"]),
        (["trust", "--list"], [], ["work", ".quillstead"]),
        (["trust", "--revoke"], [".quillstead"], ["work"]),
        (["init"], [".quillstead"], []),
        (["init", "--project"], ["work/.quillstead", ".quillstead"], []),
        (["help", "doctor"], [], []),
    ]
    # What the system's own programs and libraries read at their start, and devices.
    SYSTEM = ("/dev/", "/proc/", "/etc/", "/lib", "/usr/", "/bin/", "/sys/devices/system/cpu")

    def stage(self, home):
        """A home where all is set up, a log written, and a project to be in."""
        home.environment["SHELL"] = "/bin/sh"
        for name in self.SETTINGS:
            (home.root / name).mkdir()
        home.run("install", *HARNESSES)
        home.write(".quillstead/memory/tea.md", b"# Tea\nNever coffee.\n")
        home.write("work/.quillstead/rules.md", b"- Obey.\n")
        (home.root / "work/.git").mkdir()
        log = b"2026-11-16T03:38:33.123+00:00 5ms rules=1 | parse 5 residual 0\n"
        home.write(".local/state/quillstead/hook.log", log)

    def test_nothing_else_is_read_or_written_and_nothing_is_sent(self):
        for arguments, written, read in self.COMMANDS:
            with self.subTest(arguments), Home() as home:
                self.stage(home)
                if arguments[0] == "install":
                    home.run("uninstall", *HARNESSES)
                if arguments == ["init"]:
                    shutil.rmtree(home.root / ".quillstead")
                if arguments == ["init", "--project"]:
                    shutil.rmtree(home.root / "work/.quillstead")
                if arguments == ["trust", "--revoke"]:
                    subprocess.run([PROGRAM, "trust"], env=home.environment, cwd=home.root / "work", check=True,
                                   stdout=subprocess.DEVNULL)
                ended = subprocess.run(strace(home, ["--seccomp-bpf", "-y", "-e", f"trace={self.CALLS}"], arguments),
                                       env=home.environment, cwd=home.root / "work", capture_output=True, check=False)
                changes = self.check_trace(home, written, written + read)
                if arguments[0] in ("doctor", "recall"):  # a traced hook may come too late
                    self.assertTrue(ended.stdout)
                    continue
                self.assertEqual(ended.returncode, 0, ended.stderr + ended.stdout)
                self.assertEqual(changes > 0, bool(written), "it changes something just when it may")

    def check_trace(self, home, written, opened):
        """The number of changes, all of which are where they may be."""
        changes = 0
        for line in (home.root.parent / "trace").read_text().splitlines():
            self.assertNotRegex(line, r"\b(socket|connect)\(")
            is_open = re.search(r"\bopen(at)?\(", line)
            is_change = not is_open or re.search(r"O_(WRONLY|RDWR|CREAT)", line)
            if not re.search(r"\w+\(", line) or " = -1" in line and is_change:
                continue
            places = written if is_change else opened
            for path in self.paths_in(line, home):
                is_system = path.startswith(self.SYSTEM) and (not is_change or path.startswith(("/dev/", "/proc/")))
                is_above = not is_change and str(home.root / "work" / ".git").startswith(path)
                is_ours = not is_change and pathlib.Path(path).parent == PROGRAM.parent
                is_nameless = "O_TMPFILE" in line and written
                allowed = any(path.startswith(f"{home.root / name}") or
                              (is_nameless and (home.root / name).parent == pathlib.Path(path)) for name in places)
                self.assertTrue(allowed or is_system or is_above or is_ours, line)
                changes += is_change is not None and allowed and is_change is not False
        return changes

    def paths_in(self, line, home):
        """The paths of a call, those that begin at an open directory put together."""
        call = line[line.index("("):]
        for directory, path in re.findall(r'(?:(?:AT_FDCWD|\d+)<([^>]*)>, )?"([^"]*)"', call):
            if path:
                yield os.path.normpath(os.path.join(directory or str(home.root / "work"), path))


class AtEachStep(unittest.TestCase):
    """Killed before each system call that changes something."""

    CALLS = ["write", "fsync", "fchmod", "linkat", "renameat", "renameat2", "mkdir", "unlink", "unlinkat", "rmdir"]

    def files(self, home):
        """What is in each file, with the home, which has another name each time, under one name."""
        return {str(path.relative_to(home.root)): path.read_bytes().replace(os.fsencode(home.root), b"HOME")
                for path in home.root.rglob("*") if path.is_file()}

    def sweep(self, action, states, call):
        """Kills a run of the action before the first, the second, … of those calls. Gives how many there were."""
        for number in range(1, 200):
            with Home() as home:
                prepared(home)
                if action == "uninstall":
                    home.run("install", *HARNESSES)
                run = subprocess.run(
                    strace(home, ["-e", f"trace={call}", "-e", f"inject={call}:signal=KILL:when={number}"],
                           [action, *HARNESSES]),
                    env=home.environment, cwd=home.root, capture_output=True, check=False)
                if run.returncode >= 0 and run.returncode != 128 + signal.SIGKILL:
                    return number - 1
                self.check_files(home, states, f"{action}, before {call} {number}", call.startswith("rename"))
                home.run(action, *HARNESSES)
                self.check_files(home, states[1:], f"{action}, again after {call} {number}", False)
        self.fail("it has no end")

    def check_files(self, home, states, where, may_leave):
        for file, content in self.files(home).items():
            name = pathlib.Path(file).name
            if name.startswith(LEFTOVER):
                is_card_store = file.startswith(".quillstead/")  # the server takes it away after an hour
                self.assertTrue(may_leave or is_card_store or not has_nameless_files(home.root),
                                f"{where}: {file} is left lying")
                continue
            if ".local/" in file or ".quillstead/" in file:
                self.assertTrue(content, f"{where}: {file} is empty")
                continue
            self.assertIn(content, [state.get(file) for state in states], f"{where}: {file}")

    def test_every_file_is_old_or_new_and_nothing_is_left_lying(self):
        with Home() as home:
            prepared(home)
            before = self.files(home)
            home.run("install", *HARNESSES)
            after = self.files(home)
        steps = {}
        for action, states in [("install", [before, after]), ("uninstall", [after, before])]:
            for call in self.CALLS:
                steps[action, call] = self.sweep(action, states, call)
        print(f"{sum(steps.values())} steps: {steps}", file=sys.stderr)
        self.assertGreaterEqual(sum(steps[step] for step in [("install", "renameat"), ("install", "linkat")]), 8)


class ChangedMeanwhile(unittest.TestCase):
    """Somebody else saves a file between our reading and our writing."""

    def stopped_at(self, home, call, number):
        """A run of install for Cursor that has stopped itself before that call."""
        run = subprocess.Popen(
            strace(home, ["-e", f"trace={call}", "-e", f"inject={call}:signal=STOP:when={number}"], ["install", "cursor"]),
            env=home.environment, cwd=home.root, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(run.wait)
        self.addCleanup(run.kill)
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline:
            for child in pathlib.Path(f"/proc/{run.pid}/task/{run.pid}/children").read_text().split():
                trace = home.root.parent / "trace"
                if self.is_stopped(child) and trace.exists() and "SIGSTOP" in trace.read_text():
                    return run, int(child)
            time.sleep(0.01)
        self.fail("it does not stop")

    def is_stopped(self, child):
        try:
            stat = pathlib.Path(f"/proc/{child}/stat").read_text()
        except FileNotFoundError:  # strace tries children of its own first
            return False
        return stat.rpartition(")")[2].split()[0] in "Tt"

    def finish(self, run, child):
        os.kill(child, signal.SIGCONT)
        output, error = run.communicate(timeout=60)
        self.assertEqual((run.returncode, error), (0, ""), output)
        return output

    def save(self, path, content):
        """As editors do: a new file in the place of the old one."""
        path.with_suffix(".new").write_bytes(content)
        path.with_suffix(".new").rename(path)

    def last_look(self):
        """The number of the last `openat` before the first file gets its name."""
        with Home() as home:
            home.write(".cursor/mcp.json", b"{}")
            subprocess.run(strace(home, ["-e", "trace=openat,linkat,renameat2"], ["install", "cursor"]), check=True,
                           env=home.environment, cwd=home.root, stdout=subprocess.DEVNULL)
            calls = re.findall(r"^\d+ +(\w+)\(", (home.root.parent / "trace").read_text(), re.M)
            return next(number for number, call in enumerate(calls) if call != "openat")

    def test_a_file_that_was_changed_is_read_and_edited_again(self):
        with Home() as home:
            hooks = home.write(".cursor/hooks.json", b'{"version": 1}')
            home.write(".cursor/mcp.json", b"{}")
            run, child = self.stopped_at(home, "fsync", 3)  # behind the copy and its name
            self.save(hooks, b'{"version": 1, "theirs": 2}')
            output = self.finish(run, child)
            value = parsed(hooks.read_bytes())
            self.assertEqual((value["theirs"], len(our_handlers(value))), ("2", 2))
            self.assertIn(f"cursor  {hooks}  added\n", output)
            self.assertEqual(list(hooks.parent.glob(LEFTOVER + "*")), [])
            copies = {copy.read_bytes() for copy in (home.root / ".local/state/quillstead/backups").glob("*hooks*")}
            self.assertIn(b'{"version": 1, "theirs": 2}', copies)
            home.run("uninstall", "cursor")
            self.assertEqual(hooks.read_bytes(), b'{"version": 1, "theirs": 2}')

    def test_a_file_that_went_away_is_made(self):
        with Home() as home:
            hooks = home.write(".cursor/hooks.json", b'{"version": 1, "mine": 2}')
            run, child = self.stopped_at(home, "fsync", 3)
            hooks.unlink()
            self.finish(run, child)
            value = parsed(hooks.read_bytes())
            self.assertEqual(("mine" in value, len(our_handlers(value))), (False, 2))

    def test_a_file_that_came_is_not_replaced(self):
        with Home() as home:
            home.write(".cursor/mcp.json", b"{}")
            hooks = home.root / ".cursor/hooks.json"
            run, child = self.stopped_at(home, "openat", self.last_look())
            self.save(hooks, b'{"version": 1, "theirs": 2}')
            self.finish(run, child)
            value = parsed(hooks.read_bytes())
            self.assertEqual((value["theirs"], len(our_handlers(value))), ("2", 2))
            self.assertEqual(list(hooks.parent.glob(LEFTOVER + "*")), [])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]])
