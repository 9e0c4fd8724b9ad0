"""Runs the hook as a harness would, and judges how the run ended.

CMake says where things are: QUILLSTEAD_HOOK_UNDER_TEST (the hook), QUILLSTEAD_TEST_CHILDREN (the
programs of tests/children) and QUILLSTEAD_SANITIZED (1 when both were built with sanitizers).
QUILLSTEAD_FAULTS=long multiplies the cases; the default keeps each test to about a minute.
"""

import ctypes
import json
import os
import select
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass

HOOK = os.environ["QUILLSTEAD_HOOK_UNDER_TEST"]
CHILDREN = os.environ["QUILLSTEAD_TEST_CHILDREN"]
SANITIZED = os.environ.get("QUILLSTEAD_SANITIZED") == "1"
LONG = os.environ.get("QUILLSTEAD_FAULTS") == "long"

# What is so of each harness; tests/helpers/HarnessFacts.h says the same to C++.
with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../helpers/harnesses.json"),
          encoding="utf-8") as table:
    FACTS = json.load(table)
HARNESSES = tuple(FACTS)
SILENCE = {harness: facts["silence"] or "" for harness, facts in FACTS.items()}

RULES = "<user-rules>\nAlways test.\nIndex: a/b\n</user-rules>"
MEMORY = "<quillstead-memory>\nheader\n\ncard one\n\ncard two\n</quillstead-memory>"
SHORTCUT = "<quillstead-shortcut>s"
NOW = "<quillstead-now>n"
FULL_CONTEXT = "\n\n".join((RULES, SHORTCUT, NOW, MEMORY))

# A run may take its 2.5 seconds and then what a busy machine makes of the rest.
DEADLINE = 2.5
LONGEST_RUN = 20.0 if SANITIZED else 8.0
WATCHDOG = 60.0 if SANITIZED else 25.0


def child(name):
    return os.path.join(CHILDREN, name)


@dataclass
class Run:
    """How one run of the hook ended."""
    output: bytes
    error: bytes
    status: int          # exit status, or the negated number of the signal that ended it
    seconds: float
    cpu_seconds: float   # of the hook and every process it waited for
    peak_memory: int     # bytes, of the largest of them; never less than this program's own peak
    hung: bool = False   # killed by the watchdog


def environment(server=None, **more):
    values = {"PATH": "/usr/bin:/bin", "HOME": "/nonexistent", "QUILLSTEAD_HOOK_LOG": "",
              "ASAN_OPTIONS": "detect_leaks=0", **more}
    if server:
        values["QUILLSTEAD_MCP_BIN"] = server
    return values


def arguments(harness, slot=None):
    return [HOOK, "--harness", harness] + (["--slot", slot] if slot else [])


def filled(form, values):
    """`form`, of the table, with what stands in the places of its words in capitals."""
    if isinstance(form, dict):
        return {key: filled(value, values) for key, value in form.items()}
    if isinstance(form, list):
        return [filled(value, values) for value in form]
    return values.get(form, form)


def prompt_payload(harness, prompt="how do we test?"):
    form = FACTS[harness]["payload"]
    payload = filled(form, {"PROMPT": prompt, "SESSION": "s1", "DIRECTORY": "/"})
    payload.pop("transcript_path", None)
    return json.dumps(payload).encode()


def large_prompt(harness, size):
    """A file with a payload whose prompt is `size` bytes long. Made piece by piece, since what this
    program once needed counts as the peak memory of every process it starts."""
    before, after = prompt_payload(harness, "SPLIT HERE").split(b"SPLIT HERE")
    file = tempfile.TemporaryFile()
    file.write(before)
    piece = b"p" * (1 << 20)
    while size > 0:
        file.write(piece[:size])
        size -= len(piece)
    file.write(after)
    file.seek(0)
    return file


def stamps_session(harness):
    return FACTS[harness]["stamp"] == "session"


def pretool_payload(harness):
    tool = "MCP:grab" if stamps_session(harness) else "mcp__quillstead__grab"
    return json.dumps({"tool_name": tool, "session_id": "c1", "agent_id": "a7",
                       "tool_input": {"q": "a/b", "n": 1.50, "deep": [[{}], None]}}).encode()


def stamped(harness):
    """The answer document to `pretool_payload`."""
    given = {"q": "a/b", "n": 1.50, "deep": [[{}], None]}
    if stamps_session(harness):
        return {"updated_input": {**given, "_quillstead_session": "c1"}}
    return {"hookSpecificOutput": {"hookEventName": "PreToolUse",
                                   "updatedInput": {**given, "_quillstead_subagent": "a7"}}}


def input_file(data):
    file = tempfile.TemporaryFile()
    file.write(data)
    file.seek(0)
    return file


def run(command, stdin=b"", env=None, stdout=subprocess.PIPE, stdin_file=None, during=None,
        stdout_buffer=None, **popen):
    """Sees one run to its end. `during(process)` is called once the process is there."""
    source = stdin_file if stdin_file is not None else input_file(stdin)
    with tempfile.TemporaryFile() as errors:
        started = time.monotonic()
        process = subprocess.Popen(command, stdin=source, stdout=stdout, stderr=errors, env=env,
                                   cwd=popen.pop("cwd", "/"), **popen)
        if stdin_file is None:
            source.close()
        if during:
            during(process)
        hung = False
        output = b""
        if process.stdout:
            output, hung = _read_all(process, started)
            process.stdout.close()
        pid, wait_status, usage, hung = _wait(process, started, hung)
        seconds = time.monotonic() - started
        process.returncode = os.waitstatus_to_exitcode(wait_status)
        errors.seek(0)
        return Run(output, errors.read(), process.returncode, seconds,
                   usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024, hung)


def _read_all(process, started):
    output = bytearray()
    poll = select.poll()
    poll.register(process.stdout, select.POLLIN)
    while True:
        left = started + WATCHDOG - time.monotonic()
        if left <= 0 or not poll.poll(left * 1000):
            process.kill()
            return bytes(output), True
        part = os.read(process.stdout.fileno(), 1 << 20)
        if not part:
            return bytes(output), False
        output += part


def _wait(process, started, hung):
    while not hung:
        pid, status, usage = os.wait4(process.pid, os.WNOHANG)
        if pid:
            return pid, status, usage, False
        if time.monotonic() - started > WATCHDOG:
            process.kill()
            break
        time.sleep(0.0005)
    return (*os.wait4(process.pid, 0), True)


def _way_to_context(form):
    """The keys that lead to the text in an answer."""
    for key, value in form.items():
        if value == "CONTEXT":
            return [key]
        if isinstance(value, dict):
            return [key, *_way_to_context(value)]
    return []


def context_of(harness, document):
    """The text that an answer document hands to the harness; raises when it is not one."""
    form = FACTS[harness]["envelope"]
    context = document
    for key in _way_to_context(form):
        context = context[key]
    if not isinstance(context, str) or document != filled(form, {"CONTEXT": context}):
        raise ValueError("not an answer of " + harness)
    return context


def _no_repeated_keys(pairs):
    if len(dict(pairs)) != len(pairs):
        raise ValueError("a key twice")
    return dict(pairs)


def read_answer(output):
    """The one document on standard output; raises when it is not exactly one line of JSON."""
    text = output.decode("utf-8")
    if not text.endswith("\n") or text.count("\n") != 1:
        raise ValueError("not exactly one line")
    return json.loads(text, object_pairs_hook=_no_repeated_keys, strict=True)


def answered_context(harness, output):
    """The context in an answer to a prompt; None for the silence; raises for anything else."""
    silence = SILENCE[harness]
    if output.decode("utf-8") == (silence + "\n" if silence else ""):
        return None
    context = context_of(harness, read_answer(output))
    size = len(context.encode("utf-8"))  # also raises for a lone surrogate
    budget = FACTS[harness]["contextBudget"]
    if budget and size > budget:
        raise ValueError("%d bytes are over the budget" % size)
    return context


def complaint_about_prompt(harness, result, allowed=None):
    """What is wrong with how a served prompt ended, or None. `allowed`: the contexts it may have
    brought, None standing for the silence; without it, any."""
    complaint = complaint_about_end(result)
    if complaint:
        return complaint
    try:
        context = answered_context(harness, result.output)
    except (ValueError, KeyError, TypeError, AttributeError) as error:
        return "standard output is %r: %s" % (result.output[:300], error)
    if allowed is not None and context not in allowed:
        return "answered %r" % (context if context is None else context[:300])
    return None


def complaint_about_pretool(harness, result, allow_silence=True):
    complaint = complaint_about_end(result)
    if complaint:
        return complaint
    try:
        document = read_answer(result.output)
    except ValueError as error:
        return "standard output is %r: %s" % (result.output[:300], error)
    if document != stamped(harness) and not (allow_silence and result.output == b"{}\n"):
        return "answered %r" % result.output[:300]
    return None


def complaint_about_end(result):
    if result.hung:
        return "hung"
    if result.status != 0:
        return "ended with %d: %r" % (result.status, result.error[-2000:])
    if result.seconds > LONGEST_RUN:
        return "took %.1f s" % result.seconds
    return None


def adopt_orphans():
    """Has the processes that a hook leaves behind become ours, so that they can be counted."""
    set_child_subreaper = 36
    ctypes.CDLL(None).prctl(set_child_subreaper, 1, 0, 0, 0)


def leftovers(patience=3.0):
    """Kills and names the processes that outlive the hooks that started them by `patience`
    seconds. Call it while no hook runs."""
    end = time.monotonic() + patience
    while time.monotonic() < end:
        try:
            if os.waitpid(-1, os.WNOHANG)[0] == 0:
                time.sleep(0.01)
        except ChildProcessError:
            return []
    found = []
    for pid in living_children():
        with open("/proc/%d/comm" % pid) as name:
            found.append(name.read().strip())
        os.kill(pid, signal.SIGKILL)
        os.waitpid(pid, 0)
    return found


def living_children():
    with open("/proc/self/task/%d/children" % os.getpid()) as list_of_children:
        return [int(pid) for pid in list_of_children.read().split()]


def at_once(how_many, work, items):
    """Does `work` for each item, so many at a time, and gives the results in order."""
    with ThreadPoolExecutor(how_many) as pool:
        return list(pool.map(work, items))


class FaultTest(unittest.TestCase):
    """Counts its cases and collects every complaint instead of stopping at the first."""
    cases = 0

    def setUp(self):
        adopt_orphans()
        self.complaints = []
        self.started = time.monotonic()
        self.cases_before = FaultTest.cases

    def note(self, case, complaint):
        FaultTest.cases += 1
        if complaint:
            self.complaints.append("%s: %s" % (case, complaint))

    def tearDown(self):
        print("%s: %d cases, %.1f s" % (self._testMethodName, FaultTest.cases - self.cases_before,
                                        time.monotonic() - self.started), file=sys.stderr)

    def settle(self):
        """Fails when anything was complained about, or a process is left over."""
        left = leftovers()
        if left:
            self.complaints.append("processes left over: " + ", ".join(left))
        if self.complaints:
            self.fail("%d complaints:\n%s" % (len(self.complaints),
                                              "\n".join(self.complaints[:40])))
