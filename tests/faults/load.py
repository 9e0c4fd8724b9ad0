"""Many hooks at once, and very many one after the other, leave nothing behind."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest

from hookrun import *

AT_ONCE = 40 if SANITIZED else 200
IN_A_ROW = 200 if SANITIZED else 10_000


def descriptors():
    return len(os.listdir("/proc/self/fd"))


class Load(FaultTest):
    def setUp(self):
        super().setUp()
        self.directory = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.directory)
        self.log = os.path.join(self.directory, "log")
        self.env = environment(child("AnswersEveryTool"), QUILLSTEAD_HOOK_LOG=self.log,
                               TMPDIR=self.directory)

    def lines(self):
        with open(self.log) as file:
            return file.read().split("\n")

    def complain_about_log(self, runs):
        """As many whole lines as there were runs, each of a run within its deadline."""
        lines = self.lines()
        if lines[-1] != "" or len(lines) != runs + 1:
            self.complaints.append("%d lines in the log" % (len(lines) - 1))
        shape = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}\+00:00 (\d+)ms card=1 rules=1 "
                           r"shortcut=1 cards=2 now=1 \| parse \d+ rules \d+ cards \d+ compose \d+ "
                           r"write \d+ residual -?\d+")
        for line in lines[:-1]:
            match = shape.fullmatch(line)
            if not match:
                self.complaints.append("in the log: %r" % line)
            elif int(match[1]) > DEADLINE * 1000:
                self.complaints.append("over the deadline: " + match[1] + " ms")

    def test_200_hooks_at_once_all_answer_within_their_deadline(self):
        payloads = {harness: prompt_payload(harness) for harness in HARNESSES}
        places = [HARNESSES[number % len(HARNESSES)] for number in range(AT_ONCE)]
        started = []
        for harness in places:  # all are started before the first is waited for
            outputs = [open(os.path.join(self.directory, "%d.%s" % (len(started), stream)), "w+b")
                       for stream in ("out", "err")]
            with input_file(payloads[harness]) as source:
                started.append((harness, outputs, subprocess.Popen(
                    arguments(harness), stdin=source, stdout=outputs[0], stderr=outputs[1],
                    env=self.env, cwd="/")))
        for harness, (output, error), process in started:
            status = process.wait(timeout=WATCHDOG)
            output.seek(0)
            error.seek(0)
            result = Run(output.read(), error.read(), status, 0, 0, 0)
            self.note(harness, complaint_about_prompt(harness, result, {FULL_CONTEXT}))
            output.close()
            error.close()
        self.complain_about_log(AT_ONCE)
        self.settle()

    def test_runs_in_a_row_leak_nothing(self):
        open_before = descriptors()
        files_before = set(os.listdir(self.directory))
        for number in range(IN_A_ROW):
            harness = HARNESSES[number % len(HARNESSES)]
            result = run(arguments(harness), prompt_payload(harness), self.env)
            self.note(harness, complaint_about_prompt(harness, result, {FULL_CONTEXT}))
            if living_children():
                self.complaints.append("run %d left a process" % number)
        self.complain_about_log(IN_A_ROW)
        if set(os.listdir(self.directory)) - files_before != {"log"}:
            self.complaints.append("files left: %s" % os.listdir(self.directory))
        if descriptors() != open_before:
            self.complaints.append("descriptors left open")
        self.settle()


if __name__ == "__main__":
    unittest.main()
