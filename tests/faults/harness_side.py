"""Harnesses that misbehave: the hook ends with status 0, and says nothing wrong to whom still
listens."""

import fcntl
import os
import signal
import threading
import time
import unittest

from hookrun import *

LARGE = 1_000_000
GIGABYTE = 1_000_000_000
PLACES = [(harness, slot) for harness in HARNESSES for slot in (None, "pretool")]


def payload_for(harness, slot):
    return pretool_payload(harness) if slot == "pretool" else prompt_payload(harness)


def complaint_about(harness, slot, result, allowed=None):
    if slot == "pretool":
        return complaint_about_pretool(harness, result)
    return complaint_about_prompt(harness, result, allowed)


class HarnessSide(FaultTest):
    def env(self, **more):
        return environment(child("AnswersEveryTool"), **more)

    def large(self):
        return self.env(QUILLSTEAD_TEST_RULES_SIZE=str(LARGE))

    def test_streams_that_are_closed_or_full_change_nothing_else(self):
        """Each of the three streams missing, in every combination, and the files that fail."""
        shapes = {"%s closed" % "".join(closed): " ".join(closed) for closed in (
            ("0<&-",), ("1>&-",), ("2>&-",), ("0<&-", "1>&-"), ("0<&-", "2>&-"),
            ("1>&-", "2>&-"), ("0<&-", "1>&-", "2>&-"))}
        shapes |= {"output full": "1>/dev/full", "errors full": "2>/dev/full",
                   "all full": "1>/dev/full 2>/dev/full", "input a directory": "0</",
                   "input empty": "0</dev/null", "output read-only": "1</dev/null"}
        for harness, slot in PLACES:
            for name, shape in shapes.items():
                result = run(["sh", "-c", 'exec "$0" "$@" ' + shape, *arguments(harness, slot)],
                             payload_for(harness, slot).replace(b'"/"', b'"/usr"'), self.env())
                listens = "1" not in shape
                self.note("%s, slot %s, %s" % (harness, slot, name),
                          complaint_about(harness, slot, result) if listens or result.output
                          else complaint_about_end(result))
        self.settle()

    def test_no_descriptor_to_spare_is_survived(self):
        for harness, slot in PLACES:
            for most in range(3, 20):
                result = run(["prlimit", "--nofile=%d:" % most, *arguments(harness, slot)],
                             payload_for(harness, slot), self.env())
                self.note("%s, slot %s, %d descriptors" % (harness, slot, most),
                          complaint_about(harness, slot, result))
        self.settle()

    def test_a_reader_that_goes_away_in_a_large_answer_ends_the_run_well(self):
        for taken in (0, 1, 100, 4_096, 65_536, 70_000, 200_000, 900_000):
            for harness in ("opencode",):
                def leave(process):
                    left = taken
                    while left > 0:
                        left -= len(os.read(process.stdout.fileno(), left))
                    process.stdout.close()
                    process.stdout = None
                result = run(arguments(harness), prompt_payload(harness), self.large(),
                             during=leave)
                self.note("gone after %d bytes" % taken, complaint_about_end(result))
        self.settle()

    def test_a_reader_that_cannot_wait_gets_all_of_a_large_answer(self):
        """Standard output is a pipe that does not block, of the least size, read slowly."""
        reading, writing = os.pipe()
        os.set_blocking(writing, False)
        set_pipe_size = 1031
        fcntl.fcntl(writing, set_pipe_size, 4_096)
        answer = bytearray()
        def read_slowly():
            while part := os.read(reading, 8_192):
                answer.extend(part)
                time.sleep(0.0005)
        reader = threading.Thread(target=read_slowly)
        reader.start()
        result = run(arguments("opencode"), prompt_payload("opencode"), self.large(),
                     stdout=writing)
        os.close(writing)
        reader.join()
        result.output = bytes(answer)
        self.note("non-blocking pipe", complaint_about("opencode", None, result) or (
            "%d bytes" % len(answer) if len(answer) < LARGE else None))
        self.settle()

    def fed(self, harness, slot, feed):
        reading, writing = os.pipe()
        def feeding(process):
            def work():
                with open(writing, "wb", buffering=0) as pipe:
                    feed(pipe)
            threading.Thread(target=work).start()
        with open(reading, "rb") as source:
            return run(arguments(harness, slot), env=self.env(), stdin_file=source, during=feeding)

    def test_a_payload_that_trickles_is_read_to_its_end(self):
        def trickle(payload):
            def feed(pipe):
                for at in range(len(payload)):
                    pipe.write(payload[at:at + 1])
                    time.sleep(0.001)
            return feed
        for harness, slot in PLACES:
            result = self.fed(harness, slot, trickle(payload_for(harness, slot)))
            complaint = complaint_about(harness, slot, result, {FULL_CONTEXT})
            self.note("%s, slot %s" % (harness, slot), complaint)
        self.settle()

    def test_a_payload_cut_anywhere_ends_in_the_silence(self):
        prompt = '{"prompt":"caf\u00e9 \U0001f600","tool_name":"Task"}'.encode()
        for harness, slot in PLACES:
            for length in range(len(prompt)):
                result = run(arguments(harness, slot), prompt[:length], self.env())
                silence = "{}" if slot == "pretool" else SILENCE[harness]
                self.note("%s, slot %s, %d bytes" % (harness, slot, length),
                          complaint_about_end(result) or (
                              None if result.output.decode() == (silence and silence + "\n")
                              else "said %r" % result.output[:200]))
        self.settle()

    def test_odd_payloads_end_in_an_answer_or_the_silence(self):
        odd = {"nothing": b"", "zeros": b"\0" * 1_000, "a scalar": b"1", "a list": b"[]",
               "null": b"null", "an empty object": b"{}", "two objects": b"{}{}",
               "not UTF-8": b'{"prompt":"\xff"}', "a lone surrogate": b'{"prompt":"\\ud800"}',
               "deep": b'{"prompt":' + b"[" * 1_000_000, "many values": b'{"a":[0' + b",0" *
               5_000_000 + b"]}", "many keys": b"{" + b",".join(
                   b'"%d":{}' % key for key in range(300_000)) + b"}",
               "an escaped zero": b'{"prompt":"a\\u0000b","cwd":"/\\u0000x","session_id":"\\u0000"}',
               "a long directory": b'{"prompt":"x","cwd":"' + b"/x" * 100_000 + b'"}',
               "a directory that loops": b'{"prompt":"x","cwd":"/proc/self/cwd/proc/self/cwd"}',
               "UTF-16": '{"prompt":"x"}'.encode("utf-16"),
               "UTF-32": '{"prompt":"x"}'.encode("utf-32-be")}
        for harness, slot in PLACES:
            for name, payload in odd.items():
                result = run(arguments(harness, slot), payload, self.env())
                self.note("%s, slot %s, %s" % (harness, slot, name),
                          complaint_about_end(result) if result.output == b"{}\n"
                          else complaint_about(harness, slot, result))
        self.settle()

    @unittest.skipIf(SANITIZED, "a sanitizer multiplies the memory")
    def test_a_payload_of_a_gigabyte_ends_in_an_answer_or_the_silence(self):
        for harness in HARNESSES:
            with large_prompt(harness, GIGABYTE) as payload:
                result = run(arguments(harness), env=self.env(), stdin_file=payload)
                # The deadline is spent by the reading alone; what counts is that it ends well.
                result.seconds = 0
                self.note(harness, complaint_about(harness, None, result))
        self.settle()

    def test_every_signal_of_a_terminal_leaves_at_most_one_whole_answer(self):
        """A terminal signals the hook and its server at once. Those that end a program end the
        hook, with nothing said; those that do not change nothing."""
        ending = (signal.SIGINT, signal.SIGQUIT, signal.SIGHUP, signal.SIGTERM)
        others = (signal.SIGWINCH, signal.SIGCONT, signal.SIGURG)
        stopping = (signal.SIGTSTP, signal.SIGTTIN, signal.SIGTTOU, signal.SIGSTOP)
        for harness in HARNESSES:
            for sent in ending + others + stopping:
                for delay in (0.01, 0.05, 0.15):
                    result = self.signalled(harness, sent, delay, sent in stopping)
                    case = "%s, %s after %d ms" % (harness, sent.name, delay * 1000)
                    if sent in ending and result.status == -sent:
                        self.note(case, "said %r" % result.output if result.output else None)
                    else:
                        self.note(case, complaint_about(harness, None, result))
        self.settle()

    def signalled(self, harness, sent, delay, is_stopped):
        def strike(process):
            def later():
                time.sleep(delay)
                for each, pause in ((sent, 0.1), (signal.SIGCONT, 0)) if is_stopped else ((sent, 0),):
                    try:
                        os.killpg(process.pid, each)
                    except ProcessLookupError:
                        return
                    time.sleep(pause)
            threading.Thread(target=later).start()
        server = environment(child("AnswersByteByByte"))
        return run(arguments(harness), prompt_payload(harness), server, during=strike,
                   start_new_session=True)


if __name__ == "__main__":
    unittest.main()
