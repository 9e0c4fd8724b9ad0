#!/usr/bin/env python3
"""bench/server/run waits for the server's index, but only for one that grows. The compiler, sqlite3 and the server
are stand-ins."""

import pathlib
import subprocess
import tempfile
import unittest

RUN = pathlib.Path(__file__).resolve().parents[2] / "bench/server/run"
ANSWERS = "#!/bin/sh\ncat >/dev/null\n"
COMPILES_NOTHING = "#!/bin/sh\n"


class BenchServerTest(unittest.TestCase):
    def setUp(self):
        stage = tempfile.TemporaryDirectory()
        self.addCleanup(stage.cleanup)
        self.stage = pathlib.Path(stage.name)

    def program(self, name, text):
        path = self.stage / name
        path.write_text(text)
        path.chmod(0o755)
        return path

    def run_bench(self, sqlite):
        self.program("sqlite3", f"#!/bin/sh\n{sqlite}\n")
        environment = {"PATH": f"{self.stage}:/usr/local/bin:/usr/bin:/bin", "TMPDIR": str(self.stage),
                       "CXX": str(self.program("compiler", COMPILES_NOTHING)), "STAGE": str(self.stage)}
        return subprocess.run([RUN, self.program("server", ANSWERS), "1"], env=environment, capture_output=True,
                              text=True, timeout=200)

    def test_stops_when_a_server_keeps_no_index(self):
        run = self.run_bench("exit 1")
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stderr, "0 of 1000 cards in the index after 10 calls, and no more come\n")
        self.assertEqual(run.stdout, "")

    def test_stops_when_an_index_grows_no_more(self):
        run = self.run_bench("echo 400")
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stderr, "400 of 1000 cards in the index after 11 calls, and no more come\n")

    def test_waits_for_an_index_that_grows(self):
        run = self.run_bench('echo x >>"$STAGE/calls"; echo $(($(wc -l <"$STAGE/calls") * 50))')
        self.assertRegex(run.stdout, r"^1000 cards: cold indexing \d+ ms in 20 call\(s\)\n")
        self.assertTrue(run.stdout.endswith("no cards\n"), "this server answers nothing")
        self.assertEqual(run.returncode, 1)


if __name__ == "__main__":
    unittest.main()
