"""Memory runs out, wherever it may: the harness gets a correct answer or the silence."""

import os
import shutil
import tempfile
import unittest

from hookrun import *

HOOK_WITH_FAULTS = os.environ["QUILLSTEAD_HOOK_WITH_FAULTS"]
REPORT = 9  # the descriptor to which HookWithFaults tells that it made something fail
KILOBYTE = 1024


def payload_for(harness, slot, prompt):
    return pretool_payload(harness) if slot == "pretool" else prompt_payload(harness, prompt)


def complaint_about(harness, slot, result):
    if slot == "pretool":
        return complaint_about_pretool(harness, result)
    return complaint_about_prompt(harness, result)


class Memory(FaultTest):
    def setUp(self):
        super().setUp()
        self.directory = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.directory)

    def limited(self, harness, slot, kilobytes, prompt, **more):
        command = ["prlimit", "--as=%d:" % (kilobytes * KILOBYTE), *arguments(harness, slot)]
        env = environment(child("AnswersEveryTool"), **more)
        return run(command, payload_for(harness, slot, prompt), env)

    def never_started(self, result):
        """The kernel ends a program that it finds no room for before its first instruction."""
        return result.status in (-9, -11) and not result.output

    def walk_down(self, harness, slot, start, step, prompt="why?", **more):
        """From plenty to where the program cannot start; gives that limit in kilobytes."""
        for kilobytes in (*range(start, 0, -step), 0):
            result = self.limited(harness, slot, kilobytes, prompt, **more)
            complaint = complaint_about(harness, slot, result)
            if complaint and self.never_started(result) and kilobytes <= self.least + step:
                return
            self.note("%s, slot %s, %d kB" % (harness, slot, kilobytes), complaint)
        self.note("%s, slot %s" % (harness, slot), "started without any memory")

    def find_least(self):
        """The least address space, in kilobytes, in which the hook gets as far as a refusal."""
        for kilobytes in range(64, 65_536, 4):
            result = run(["prlimit", "--as=%d:" % (kilobytes * KILOBYTE), HOOK], b"",
                         environment())
            if result.status == 0:
                return kilobytes
        raise AssertionError("the hook does not start in 64 MB")

    def test_less_and_less_address_space_ends_in_an_answer_or_the_silence(self):
        self.least = self.find_least()
        for harness in HARNESSES:
            for slot in (None, "pretool"):
                self.walk_down(harness, slot, self.least + 1_000, 4)
                self.walk_down(harness, slot, 32_000, 1_000)
        self.settle()

    def test_less_and_less_address_space_for_large_texts_is_survived(self):
        self.least = self.find_least()
        for harness in HARNESSES:
            self.walk_down(harness, None, self.least + 12_000, 250 if LONG else 500,
                           prompt="p" * 1_000_000, QUILLSTEAD_TEST_RULES_SIZE="1000000")
        self.settle()

    def failing(self, harness, slot, order):
        """One run of the hook in which allocations fail; and whether one did."""
        fd, report = tempfile.mkstemp(dir=self.directory)
        try:
            env = environment(child("AnswersEveryTool"), QUILLSTEAD_TEST_FAIL_ALLOCATION=order,
                              QUILLSTEAD_HOOK_LOG=os.path.join(self.directory, "log"))
            command = ["sh", "-c", 'exec "$0" "$@" 9>"$REPORT"', HOOK_WITH_FAULTS,
                       *arguments(harness, slot)[1:]]
            result = run(command, payload_for(harness, slot, "why?").replace(b'"/"', b'"/usr"'),
                         {**env, "REPORT": report})
            return result, os.fstat(fd).st_size > 0
        finally:
            os.close(fd)
            os.unlink(report)

    def fail_each(self, harness, slot, suffix):
        """The first allocation fails, then the second, until a run has no such allocation."""
        together = 20
        for first in range(1, 100_000, together):
            orders = [str(first + more) + suffix for more in range(together)]
            runs = at_once(4, lambda order: self.failing(harness, slot, order), orders)
            for order, (result, did_fail) in zip(orders, runs):
                if not did_fail:
                    return
                self.note("%s, slot %s, allocation %s" % (harness, slot, order),
                          complaint_about(harness, slot, result))

    def test_whichever_allocation_fails_the_run_ends_in_an_answer_or_the_silence(self):
        for harness in HARNESSES:
            for slot in (None, "rules", "index", "recall", "pretool"):
                for suffix in ("", "+"):
                    self.fail_each(harness, slot, suffix)
        self.settle()

    def test_a_close_that_reports_an_error_changes_nothing(self):
        for harness in HARNESSES:
            env = environment(child("AnswersEveryTool"), QUILLSTEAD_TEST_FAIL_CLOSE="1")
            result = run([HOOK_WITH_FAULTS, *arguments(harness)[1:]], prompt_payload(harness), env)
            self.note(harness, complaint_about_prompt(harness, result, {FULL_CONTEXT}))
        self.settle()


if __name__ == "__main__":
    unittest.main()
