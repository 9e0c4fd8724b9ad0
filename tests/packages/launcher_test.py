#!/usr/bin/env python3
"""What npm puts on PATH as `quillstead`. Needs node."""

import contextlib
import json
import os
import pathlib
import platform
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

LAUNCHER = pathlib.Path(__file__).resolve().parents[2] / "packaging/npm/quillstead.js"
SYSTEM = {"linux-x86_64": "quillstead-linux-x64", "linux-aarch64": "quillstead-linux-arm64",
          "darwin-x86_64": "quillstead-darwin", "darwin-arm64": "quillstead-darwin",
          }[f"{sys.platform}-{platform.machine()}"]


class Launcher(unittest.TestCase):
    """The script, with a program of ours in the place of the native one."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.place = pathlib.Path(scratch.name).resolve()
        self.launcher = self.place / "quillstead/bin/quillstead.js"
        self.launcher.parent.mkdir(parents=True)
        shutil.copy(LAUNCHER, self.launcher)

    def write_program(self, text, mode=0o755):
        program = self.place / "quillstead/node_modules" / SYSTEM / "bin/quillstead"
        program.parent.mkdir(parents=True)
        (program.parent.parent / "package.json").write_text("{}")
        program.write_text("#!/bin/sh\n" + text)
        program.chmod(mode)

    def start(self, *arguments, before=""):
        script = ["-e", f"{before}; process.argv.splice(1, 0, {json.dumps(str(self.launcher))}); "
                        f"require({json.dumps(str(self.launcher))})", "--"] if before else [self.launcher]
        child = subprocess.Popen(["node", *script, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, text=True, start_new_session=True)
        self.addCleanup(self.end, child)
        return child

    @staticmethod
    def end(child):
        """Ends what is left of it."""
        with contextlib.suppress(ProcessLookupError):
            os.killpg(child.pid, signal.SIGKILL)
        child.communicate(timeout=60)

    def test_passes_on_words_streams_and_status(self):
        self.write_program('printf "<%s>" "$@"; cat; echo wrong >&2; exit 7')
        child = self.start("a b", "", "--json")
        self.assertEqual(child.communicate("typed", timeout=60), ("<a b><><--json>typed", "wrong\n"))
        self.assertEqual(child.returncode, 7)

    def test_ends_by_the_signal_that_ended_the_program(self):
        for name in ("TERM", "INT", "KILL", "SEGV"):
            with self.subTest(signal=name):
                self.setUp()
                self.write_program(f"kill -{name} $$")
                child = self.start()
                child.communicate(timeout=60)
                self.assertEqual(child.returncode, -getattr(signal, "SIG" + name))

    def test_says_that_the_reader_has_gone(self):
        self.write_program("kill -PIPE $$")
        child = self.start()
        child.communicate(timeout=60)
        self.assertEqual(child.returncode, 128 + signal.SIGPIPE)

    def test_passes_on_a_signal(self):
        self.write_program("trap 'echo ending; exit 3' TERM; echo started; while :; do sleep 0.05; done")
        child = self.start()
        self.assertEqual(child.stdout.readline(), "started\n")
        child.terminate()
        self.assertEqual(child.communicate(timeout=60)[0], "ending\n")
        self.assertEqual(child.returncode, 3)

    def test_says_that_the_program_cannot_be_started(self):
        self.write_program("exit 0", mode=0o644)
        child = self.start()
        said = child.communicate(timeout=60)[1]
        self.assertIn("bin/quillstead cannot be started: EACCES", said)
        self.assertIn(f"install {SYSTEM} again", said)
        self.assertEqual(child.returncode, 1)

    def test_says_on_which_systems_it_runs(self):
        child = self.start("--version", before='Object.defineProperty(process, "platform", { value: "win32" })')
        self.assertIn("quillstead: there are no programs for win32-x64", child.communicate(timeout=60)[1])
        self.assertEqual(child.returncode, 1)

    def test_says_which_package_is_missing(self):
        child = self.start("--version")
        said = child.communicate(timeout=60)[1]
        self.assertIn(f"quillstead: the package {SYSTEM} is missing", said)
        self.assertIn("install quillstead again on this system, with optional dependencies", said)
        self.assertEqual(child.returncode, 1)


if __name__ == "__main__":
    unittest.main()
