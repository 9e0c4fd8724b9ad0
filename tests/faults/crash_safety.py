"""Whenever a run is killed, or a fault strikes it, the harness never gets two answers, nor half an
answer with the silence behind it.

A fault ends a run with status 0 and the silence, unless the answer is out already. Claude Code's
silence is to print nothing; there a fault ends the hook as it would end any other program.
"""

import os
import re
import shutil
import signal
import subprocess
import tempfile
import threading
import time
import unittest

from hookrun import *

FAULTS = (signal.SIGILL, signal.SIGTRAP, signal.SIGSEGV, signal.SIGBUS, signal.SIGFPE, signal.SIGABRT)
STRACE = shutil.which("strace")
LARGE = 300_000


def is_belted(harness, slot):
    return slot == "pretool" or harness != "claude-code"


def silence_of(harness, slot):
    return b"{}\n" if slot == "pretool" else \
        (SILENCE[harness] + "\n").encode() if SILENCE[harness] else b""


def complaint_about(harness, slot, sent, result, whole, at_start=False):
    """`whole`: the answer of an undisturbed run. `at_start`: the hook may not have got as far as
    the belt."""
    silence = silence_of(harness, slot)
    outputs = {whole, silence}
    statuses = {0}
    if sent == signal.SIGKILL or not is_belted(harness, slot):
        statuses.add(-sent)
    if at_start:
        statuses.add(-sent)
        outputs.add(b"")
    cut_short = result.status == -signal.SIGKILL and whole.startswith(result.output)
    died_unbelted = result.status == -sent and not is_belted(harness, slot) and \
        whole.startswith(result.output)
    if result.hung:
        return "hung"
    if result.status not in statuses:
        return "ended with %d" % result.status
    if result.output not in outputs and not cut_short and not died_unbelted:
        return "said %r" % result.output[:200]
    return None


class CrashSafety(FaultTest):
    def setUp(self):
        super().setUp()
        self.directory = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.directory)

    def env(self, server="AnswersEveryTool", **more):
        return environment(child(server), QUILLSTEAD_HOOK_LOG=os.path.join(self.directory, "log"),
                           **more)

    def payload(self, harness, slot):
        return pretool_payload(harness) if slot == "pretool" else prompt_payload(harness)

    def interrupted(self, harness, slot, sent, delay, env):
        def strike(process):
            def later():
                time.sleep(delay)
                try:
                    os.kill(process.pid, sent)
                except ProcessLookupError:
                    pass
            threading.Thread(target=later).start()
        return run(arguments(harness, slot), self.payload(harness, slot), env, during=strike)

    def spread(self, harness, slot, env, points):
        calm = min((run(arguments(harness, slot), self.payload(harness, slot), env)
                    for _ in range(5)), key=lambda result: result.seconds)
        whole = calm.output
        places = [(sent, calm.seconds * 1.3 * point / points)
                  for sent in FAULTS + (signal.SIGKILL,) for point in range(points)]
        def strike(place):
            return self.interrupted(harness, slot, *place, env)
        for (sent, delay), result in zip(places, at_once(2, strike, places)):
            case = "%s, slot %s, %s after %.2f ms" % (harness, slot, sent.name, delay * 1000)
            self.note(case, complaint_about(harness, slot, sent, result, whole, at_start=True))

    def test_a_signal_at_any_time_of_a_served_prompt_leaves_one_answer_or_none(self):
        for harness in HARNESSES:
            self.spread(harness, None, self.env(), 200 if LONG else 25)
        self.settle()

    def test_a_signal_at_any_time_of_a_large_answer_leaves_one_answer_or_none(self):
        env = self.env(QUILLSTEAD_TEST_RULES_SIZE=str(LARGE))
        self.spread("opencode", None, env, 200 if LONG else 40)
        self.settle()

    def test_a_signal_at_any_time_of_a_stamped_call_leaves_one_answer_or_none(self):
        for harness in HARNESSES:
            self.spread(harness, "pretool", self.env(), 200 if LONG else 15)
        self.settle()

    def slow_reader(self, sent):
        """The signal comes while the harness has taken only the beginning of the answer."""
        env = self.env(QUILLSTEAD_TEST_RULES_SIZE=str(LARGE))
        reading, writing = os.pipe()
        with input_file(prompt_payload("opencode")) as payload:
            process = subprocess.Popen(arguments("opencode"), stdin=payload, stdout=writing,
                                       env=env, cwd="/")
        os.close(writing)
        answer = os.read(reading, 10_000)
        os.kill(process.pid, sent)
        time.sleep(0.05)
        while part := os.read(reading, 1 << 16):
            answer += part
        os.close(reading)
        return answer, process.wait()

    def test_a_signal_in_the_middle_of_a_large_answer_never_adds_the_silence_to_it(self):
        whole = run(arguments("opencode"), prompt_payload("opencode"),
                    self.env(QUILLSTEAD_TEST_RULES_SIZE=str(LARGE))).output
        self.assertGreater(len(whole), LARGE)
        for sent in FAULTS:
            answer, status = self.slow_reader(sent)
            self.note(sent.name, None if (answer, status) == (whole, 0) else
                      "ended with %d and %d bytes" % (status, len(answer)))
        answer, status = self.slow_reader(signal.SIGKILL)
        is_cut = status == -signal.SIGKILL and whole.startswith(answer) and answer != whole
        self.note("SIGKILL", None if is_cut else "ended with %d and %d bytes" % (status, len(answer)))
        self.settle()

    @unittest.skipUnless(STRACE, "strace is not installed")
    def test_a_signal_at_any_system_call_leaves_one_answer_or_none(self):
        for harness in HARNESSES:
            for slot in (None, "pretool"):
                self.strike_at_each_call(harness, slot)
        self.settle()

    def strike_at_each_call(self, harness, slot):
        def traced(*options, name="calls"):
            report = os.path.join(self.directory, name)
            result = run([STRACE, "-qq", "-e", "signal=none", "-o", report, *options,
                          *arguments(harness, slot)], self.payload(harness, slot), self.env())
            with open(report, errors="replace") as file:
                return result, file.read()
        calm, said = traced()
        lines = re.findall(r"^\w+\(.*", said, re.M)
        calls = [line.partition("(")[0] for line in lines]
        signals = FAULTS + (signal.SIGKILL,) if LONG else \
            (signal.SIGSEGV, signal.SIGABRT, signal.SIGKILL)
        # The belt's last act: it lets the signals through.
        lets_through = next((number for number, line in enumerate(lines)
                             if line.startswith("rt_sigprocmask") and "SEGV" in line), len(calls))
        belted_from = lets_through + 1 if is_belted(harness, slot) else len(calls)
        places = [(sent, number) for number in range(1, len(calls)) for sent in signals
                  if calls[number] not in ("exit_group", "rt_sigreturn")]

        def strike(place):
            sent, number = place
            occurrence = calls[:number + 1].count(calls[number])
            return traced("-e", "inject=%s:signal=%s:when=%d" % (
                calls[number], sent.name, occurrence), name="%s-%d" % place)
        for (sent, number), (result, _) in zip(places, at_once(4, strike, places)):
            case = "%s, slot %s, %s at call %d, %s" % (harness, slot, sent.name, number,
                                                      calls[number])
            self.note(case, complaint_about(harness, slot, sent, result, calm.output,
                                            at_start=number < belted_from))


if __name__ == "__main__":
    unittest.main()
