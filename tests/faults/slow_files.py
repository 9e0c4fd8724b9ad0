"""A store of many files, each slow to open, keeps no prompt from its rules.

strace holds the server up for two milliseconds at each file that it opens, as a distant or dying
disk would. The hook runs as it is.
"""

import os
import shutil
import tempfile
import unittest

from hookrun import *

SERVER = os.environ["QUILLSTEAD_MCP_UNDER_TEST"]
FILES = 1_000
DELAY = 2_000  # microseconds
MOST_PROMPTS = 60
RULE = "- Always look up."


class SlowFiles(FaultTest):
    def setUp(self):
        super().setUp()
        self.directory = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.directory)
        cards = self.path("home/.quillstead/memory")
        os.makedirs(cards, mode=0o700)
        with open(self.path("home/.quillstead/rules.md"), "w") as rules:
            rules.write(RULE + "\n")
        for number in range(FILES):
            with open("%s/%d.md" % (cards, number), "w") as card:
                card.write("# Card %d\n\nThe heron%d stands here.\n" % (number, number))
        self.opened = self.path("opened")
        server = self.path("server")
        with open(server, "w") as script:
            script.write("#!/bin/sh\nexec strace -f -qq --seccomp-bpf -A -o '%s' -e trace=openat,openat2 "
                         "-e inject=openat,openat2:delay_exit=%d '%s'\n" % (self.opened, DELAY, SERVER))
        os.chmod(server, 0o755)
        self.log = self.path("log")
        self.env = environment(server, HOME=self.path("home"), QUILLSTEAD_HOOK_LOG=self.log,
                               QUILLSTEAD_REPEAT="always")

    def path(self, name):
        return os.path.join(self.directory, name)

    def prompt(self, number):
        """The context for a prompt about one of the cards. A prompt that ran out of time, as the log
        then says, is asked again: a busy machine does that to any prompt, and a server that waits for
        all files to every one."""
        for _ in range(10):
            self.forget(self.log)
            result = run(arguments("codex"), prompt_payload("codex", "where is heron%d?" % number), self.env)
            complaint = complaint_about_prompt("codex", result)
            self.note("prompt", complaint)
            with open(self.log) as log:
                if "timeout" not in log.read():
                    return "" if complaint else answered_context("codex", result.output) or ""
        self.fail("ten prompts ran out of time")

    def forget(self, path):
        if os.path.exists(path):
            os.remove(path)

    def cards_opened(self):
        with open(self.opened) as lines:
            return sum('.md"' in line and "rules.md" not in line for line in lines)

    def test_a_thousand_slow_files_leave_every_prompt_its_rules(self):
        self.assertIn(RULE, self.prompt(0))
        opened_at_first = self.cards_opened()
        self.assertGreater(opened_at_first, 0)
        self.assertLess(opened_at_first, FILES, "strace held nothing up")
        prompts = 0
        asked = [0, FILES // 2, FILES - 1]
        while asked:
            prompts += 1
            self.assertLess(prompts, MOST_PROMPTS, "the index never held all cards")
            context = self.prompt(asked[0])
            self.assertIn(RULE, context)
            if "## Card %d\n" % asked[0] in context:
                asked.pop(0)
        print("%d cards opened at the first prompt, %d prompts more" % (opened_at_first, prompts),
              file=sys.stderr)
        # What is known is not opened again, but for the cards that are shown.
        self.forget(self.opened)
        self.assertIn(RULE, self.prompt(0))
        self.assertLess(self.cards_opened(), 100)
        self.settle()


if __name__ == "__main__":
    unittest.main()
