#!/usr/bin/env python3
"""From an empty home to a first recalled card, by the lines that the README gives. QUILLSTEAD names the
program, which has the others beside it."""

import json
import pathlib
import re
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
from install_test import IS_LINUX, PROGRAM, Home, our_handlers

README = pathlib.Path(__file__).parents[2] / "README.md"


def readme_lines():
    """The README's two blocks of shell lines: for setting up, and for a first card."""
    section = README.read_text(encoding="utf-8").split("\n## Set up\n", 1)[1].split("\n## ", 1)[0]
    set_up, first_card = re.findall(r"```sh\n(.*?)```", section, re.S)
    return set_up, first_card


class FirstCard(unittest.TestCase):
    def setUp(self):
        self.home = Home()
        self.addCleanup(self.home.directory.cleanup)
        (self.home.root / ".claude").mkdir()
        self.home.environment["PATH"] = f"{PROGRAM.parent}:/usr/bin:/bin"

    def shell(self, lines):
        ended = subprocess.run(["sh", "-e", "-c", lines], env=self.home.environment, cwd=self.home.root,
                               capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual((ended.returncode, ended.stderr), (0, ""), ended.stdout)
        return ended.stdout

    def asked(self, prompt):
        """What Claude Code gets from the handlers in its settings, put together."""
        settings = json.loads((self.home.root / ".claude/settings.json").read_text())
        context = ""
        for event, handler in our_handlers(settings):
            if event != "UserPromptSubmit":
                continue
            payload = {"session_id": "s", "cwd": str(self.home.root), "hook_event_name": event, "prompt": prompt}
            ended = subprocess.run([handler["command"], *handler["args"]], input=json.dumps(payload), text=True,
                                   env={**self.home.environment, **settings.get("env", {})}, cwd=self.home.root,
                                   capture_output=True, timeout=handler["timeout"] * 4, check=False)
            self.assertEqual((ended.returncode, ended.stderr), (0, ""))
            if ended.stdout:
                context += json.loads(ended.stdout)["hookSpecificOutput"]["additionalContext"]
        return context

    def test_two_lines_are_all_that_it_takes(self):
        set_up, first_card = readme_lines()
        self.assertEqual(len(set_up.splitlines()), 2)
        told = self.shell(set_up)
        self.assertRegex(told, r"claude-code  .*/settings\.json  added\n")
        self.assertNotRegex(told, r"(?m)^(FAIL|warn) ")
        self.assertNotRegex(told, r"(?m)^\S+ +(codex|cursor|opencode)[.] ")
        self.assertEqual(sorted(path.name for path in self.home.root.iterdir() if not path.name.startswith(".c")),
                         [".local", ".quillstead"] if IS_LINUX else [".quillstead"])
        self.assertEqual(self.asked("what do I drink?"), "")  # nothing is known yet

        self.assertIn("Never order coffee for me.", self.shell(first_card))
        self.assertIn("Never order coffee for me.", self.asked("what do I drink, tea?"))
        with open(self.home.root / ".quillstead/rules.md", "a", encoding="utf-8") as rules:
            rules.write("- Answer briefly.\n")
        self.assertIn("- Answer briefly.", self.asked("hello"))

        self.assertNotIn("FAIL ", self.shell("quillstead doctor"))  # it may warn of a card's mode
        if IS_LINUX:
            self.assertIn("with cards", self.shell("quillstead log"))
        self.shell("quillstead uninstall")
        self.assertEqual(list((self.home.root / ".claude").iterdir()), [])

    def test_a_card_that_was_there_before_comes_at_the_first_prompt(self):
        set_up, first_card = readme_lines()
        self.shell(first_card)
        self.shell(set_up)
        self.assertIn("Never order coffee for me.", self.asked("what do I drink?"))

    def test_settings_that_were_there_stay(self):
        settings = self.home.write(".claude/settings.json", b'{\n  // mine\n  "model": "opus"\n}\n')
        before = settings.read_bytes()
        self.shell("quillstead install && quillstead doctor && quillstead uninstall")
        self.assertEqual(settings.read_bytes(), before)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]])
