#!/usr/bin/env python3
"""The example that asks a memory server elsewhere works behind the hook. QUILLSTEAD names the built program."""

import contextlib
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

from memory_over_http import REQUESTS, MemoryOverHTTP

PROGRAMS = pathlib.Path(os.environ["QUILLSTEAD"]).parent
BRIDGE = pathlib.Path(__file__).resolve().parents[2] / "examples/remote/memory-server"
PATH = os.path.dirname(sys.executable) + ":" + os.environ["PATH"]  # no wrapper in front of Python
TRIES = 5  # for the hook on a busy machine, which does not wait for the start of an interpreter


class Remote(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.place = pathlib.Path(directory.name)
        (self.place / "far/.quillstead/memory").mkdir(parents=True)
        (self.place / "far/.quillstead/rules.md").write_text("- Be careful.\n")
        (self.place / "far/.quillstead/memory/heron.md").write_text("# Heron\n\nstands in the water\n")
        (self.place / "near").mkdir()

    @contextlib.contextmanager
    def served(self, **how):
        far = {"HOME": str(self.place / "far"), "PATH": PATH}
        memory = MemoryOverHTTP(PROGRAMS / "quillstead-mcp", far, **how)
        try:
            yield memory
        finally:
            memory.close()

    def environment(self, memory, **more):
        return {"HOME": str(self.place / "near"), "PATH": PATH, "MEMORY_URL": memory.url,
                "QUILLSTEAD_MCP_BIN": str(BRIDGE), "QUILLSTEAD_HOOK_LOG": str(self.place / "log"), **more}

    def bridged(self, memory, **more):
        """One run of the example: its responses by id, and how it ended."""
        end = subprocess.run([BRIDGE], input=REQUESTS, capture_output=True, text=True, check=False,
                             env=self.environment(memory, **more))
        return {response["id"]: response for response in map(json.loads, end.stdout.splitlines())}, end

    def hooked(self, memory, **more):
        """What the hook answers, and the line in its log."""
        payload = json.dumps({"hook_event_name": "UserPromptSubmit", "prompt": "where is the heron?",
                              "cwd": str(self.place / "near")})
        for _ in range(TRIES):
            (self.place / "log").write_text("")
            end = subprocess.run([PROGRAMS / "quillstead-hook", "--harness", "codex"], input=payload, text=True,
                                 capture_output=True, check=True, env=self.environment(memory, **more))
            log = (self.place / "log").read_text()
            if "timeout" not in log:
                break
        return end.stdout, log

    def test_carries_a_call_to_the_server_and_back(self):
        for stream in (False, True):
            with self.subTest(stream=stream), self.served(stream=stream) as memory:
                responses, end = self.bridged(memory)
                self.assertEqual((end.returncode, end.stderr), (0, ""))
                self.assertEqual(sorted(responses), [1, 2])
                self.assertIn("stands in the water", responses[2]["result"]["content"][0]["text"])
                self.assertEqual(memory.asked, ["initialize", "notifications/initialized", "tools/call"])
                for _ in range(1000):
                    if memory.ended:
                        break
                    time.sleep(0.01)
                self.assertEqual(memory.ended, 1, "the session was left open")

    def test_brings_rules_and_cards_through_the_hook(self):
        with self.served(stream=True, token="abc") as memory:
            answer, log = self.hooked(memory, MEMORY_TOKEN="abc")
            self.assertIn("Be careful.", answer)
            self.assertIn("stands in the water", answer)
            self.assertIn(" cards=1", log)

    def test_a_server_that_refuses_or_fails_leaves_the_prompt_alone(self):
        for how in ({"token": "abc"}, {"failing": True}):
            with self.subTest(how), self.served(**how) as memory:
                responses, end = self.bridged(memory)
                self.assertEqual(responses, {})
                self.assertEqual(end.returncode, 1)
                self.assertRegex(end.stderr, r"^memory-server: ConnectionError: (401|500) ")
                answer, log = self.hooked(memory)
                self.assertNotIn("careful", answer)
                self.assertIn("rules=MISS:no-envelope", log)

    def test_a_server_that_is_not_there_leaves_the_prompt_alone(self):
        with self.served() as memory:
            gone = memory
        _, end = self.bridged(gone)
        self.assertEqual(end.returncode, 1)
        self.assertRegex(end.stderr, "^memory-server: ConnectionRefusedError")


if __name__ == "__main__":
    unittest.main()
