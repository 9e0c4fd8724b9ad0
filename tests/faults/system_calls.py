"""Whatever system call fails, whichever way it can, the harness gets its answer.

strace makes one call of a run fail and leaves every other alone: for each call that the hook makes
and each error that it can give, first the first such call, then the second, until a run ends
without having met the one that was to fail.
"""

import os
import re
import shutil
import tempfile
import unittest

from hookrun import *

STRACE = shutil.which("strace")

# What each call can fail with, by its manual page. brk tells of its failure by giving an address
# that is not the one asked for.
ERRORS = {
    "access": "EACCES EIO ELOOP ENAMETOOLONG ENOENT ENOMEM ENOTDIR EROFS",
    "clone": "EAGAIN ENOMEM ENOSPC EPERM",
    "clone3": "EAGAIN ENOMEM ENOSPC ENOSYS EPERM",
    "fcntl": "EACCES EAGAIN EBADF EINTR EINVAL EMFILE EPERM",
    "fstat": "EBADF EIO ENOMEM EOVERFLOW",
    "getcwd": "EACCES EFAULT ENOENT ENOMEM ERANGE",
    "getrandom": "EAGAIN EINTR ENOSYS",
    "getuid": "",
    "kill": "EPERM ESRCH",
    "lseek": "EBADF EINVAL EOVERFLOW ESPIPE",
    "lstat": "EACCES ELOOP ENOENT ENOMEM ENOTDIR",
    "madvise": "EAGAIN EINVAL ENOMEM",
    "mmap": "EAGAIN ENFILE ENOMEM EPERM",
    "mprotect": "EACCES EINVAL ENOMEM",
    "mremap": "EAGAIN EFAULT ENOMEM",
    "munmap": "EINVAL ENOMEM",
    "newfstatat": "EACCES EBADF EIO ELOOP ENAMETOOLONG ENOENT ENOMEM ENOTDIR EOVERFLOW",
    "open": "EACCES EDQUOT EINTR EISDIR ELOOP EMFILE ENAMETOOLONG ENFILE ENOENT ENOMEM ENOSPC"
            " ENOTDIR ENXIO EROFS ETXTBSY",
    "openat": "EACCES EDQUOT EINTR EISDIR ELOOP EMFILE ENAMETOOLONG ENFILE ENOENT ENOMEM ENOSPC"
              " ENOTDIR ENXIO EROFS ETXTBSY",
    "pipe": "EFAULT EMFILE ENFILE",
    "pipe2": "EFAULT EINVAL EMFILE ENFILE ENOPKG",
    "poll": "EFAULT EINTR EINVAL ENOMEM",
    "ppoll": "EFAULT EINTR EINVAL ENOMEM",
    "pread64": "EBADF EINTR EIO",
    "prlimit64": "EFAULT EINVAL EPERM ESRCH",
    "read": "EAGAIN EBADF EFAULT EINTR EINVAL EIO EISDIR",
    "readlink": "EACCES EFAULT EINVAL EIO ELOOP ENAMETOOLONG ENOENT ENOMEM ENOTDIR",
    "readlinkat": "EACCES EFAULT EINVAL EIO ELOOP ENAMETOOLONG ENOENT ENOMEM ENOTDIR",
    "rseq": "EINVAL EPERM ENOSYS",
    "rt_sigaction": "EFAULT EINVAL",
    "rt_sigprocmask": "EFAULT EINVAL",
    "set_robust_list": "EINVAL ENOSYS",
    "sigaltstack": "EFAULT EINVAL ENOMEM EPERM",
    "stat": "EACCES ELOOP ENOENT ENOMEM ENOTDIR",
    "wait4": "ECHILD EINTR EINVAL",
    "write": "EAGAIN EBADF EDQUOT EFAULT EFBIG EINTR EINVAL EIO ENOSPC EPERM EPIPE",
    "writev": "EAGAIN EBADF EDQUOT EFAULT EFBIG EINTR EINVAL EIO ENOSPC EPERM EPIPE",
}
FAULTS = {call: ["error=" + error for error in errors.split()] for call, errors in ERRORS.items()}
FAULTS["brk"] = ["retval=0"]

# Calls that cannot fail, or where a failure made up by strace is unlike any that there can be: it
# keeps a descriptor open that Linux always closes, whatever close says (HookWithFaults tests that).
NEVER_FAIL = {"arch_prctl", "close", "execve", "exit_group", "rt_sigreturn", "set_tid_address"}

# By these calls an answer is written; one that fails may leave it incomplete.
WRITING = re.compile(r"^writev?\(1,.*\(INJECTED\)", re.M)

LARGE = 200_000
CPU_LIMIT = 1.2


class Scenario:
    """One way to run the hook, and what its answer may be."""

    def __init__(self, name, harness, slot=None, env=None, payload=None, hook=HOOK):
        self.name = "%s, %s, slot %s" % (name, harness, slot)
        self.harness = harness
        self.slot = slot
        self.env = env or environment()
        self.command = [hook] + arguments(harness, slot)[1:]
        self.payload = payload or (pretool_payload(harness) if slot == "pretool"
                                   else prompt_payload(harness).replace(b'"/"', b'"/usr"'))

    def complaint(self, result, whole):
        if self.slot == "pretool":
            complaint = complaint_about_pretool(self.harness, result)
        else:
            complaint = complaint_about_prompt(self.harness, result)
        if complaint and whole is not None and result.status == 0 and not result.hung:
            return None if whole.startswith(result.output) else complaint
        return complaint


def traced(scenario, *options, report, follow=()):
    return run([STRACE, "-qq", *follow, "-e", "signal=none", "-o", report, *options,
                *scenario.command], scenario.payload, scenario.env)


def read_file(path):
    with open(path, errors="replace") as file:
        return file.read()


class Trace:
    """What an undisturbed run does."""

    def __init__(self, scenario, directory):
        report = os.path.join(directory, "trace")
        self.result = traced(scenario, report=report)
        calls = re.findall(r"^(\w+)\(", read_file(report), re.M)
        self.calls = sorted(set(calls) - NEVER_FAIL)
        # Until the hook has ignored SIGPIPE, its first act, it is the C library's start.
        start = calls[:calls.index("rt_sigaction") + 1]
        self.at_start = {call: start.count(call) for call in set(start)}


@unittest.skipUnless(STRACE, "strace is not installed")
class SystemCalls(FaultTest):
    def setUp(self):
        super().setUp()
        self.directory = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.directory)

    def sweep(self, scenario, only=None, silent_without=()):
        """Every call of the scenario, every error, every occurrence. Where one of `silent_without` fails
        nothing need be said."""
        trace = Trace(scenario, self.directory)
        complaint = scenario.complaint(trace.result, None)
        self.assertIsNone(complaint, "%s, undisturbed: %s" % (scenario.name, complaint))
        unknown = set(trace.calls) - set(FAULTS)
        self.assertFalse(unknown, "calls whose errors nobody has listed: %s" % sorted(unknown))
        kinds = [(call, fault) for call in trace.calls for fault in FAULTS[call]
                 if only is None or call in only]
        at_once(6, lambda kind: self.fail_each(scenario, trace, *kind, kind[0] in silent_without), kinds)

    def fail_each(self, scenario, trace, call, fault, may_be_silent):
        report = os.path.join(self.directory, "%s-%s" % (call, fault))
        for occurrence in range(1, 1000):
            result = traced(scenario, "-e", "trace=" + call, "-e",
                            "inject=%s:%s:when=%d" % (call, fault, occurrence), report=report)
            said = read_file(report)
            if "INJECTED" not in said:
                return
            case = "%s: %s %d %s" % (scenario.name, call, occurrence, fault)
            if occurrence <= trace.at_start.get(call, 0) or (may_be_silent and not result.output):
                self.note(case, self.complaint_about_start(scenario, result))
            else:
                self.note(case, self.complaint(scenario, trace, result, said, fault))
        self.note("%s: %s %s" % (scenario.name, call, fault), "never ran out of calls")

    @staticmethod
    def complaint_about_start(scenario, result):
        """Before its first instruction the hook can promise nothing but to say nothing wrong."""
        if result.hung or result.cpu_seconds > CPU_LIMIT:
            return "hung or span"
        return None if not result.output else scenario.complaint(result, None)

    @staticmethod
    def complaint(scenario, trace, result, said, fault):
        may_be_cut = WRITING.search(said) and fault not in ("error=EINTR", "error=EAGAIN")
        complaint = scenario.complaint(result, trace.result.output if may_be_cut else None)
        if not complaint and result.cpu_seconds > CPU_LIMIT:
            complaint = "used %.1f s of processor time" % result.cpu_seconds
        return complaint

    def beside_the_hook(self):
        """A directory with a hook and its server in it, as they are installed."""
        place = os.path.join(self.directory, "installed")
        os.makedirs(place, exist_ok=True)
        hook = os.path.join(place, "quillstead-hook")
        shutil.copy(HOOK, hook)
        shutil.copy(child("AnswersEveryTool"), os.path.join(place, "quillstead-mcp"))
        return hook

    def prompts(self):
        log = os.path.join(self.directory, "log")
        server = child("AnswersEveryTool")
        no_home = {"PATH": "/usr/bin"}
        yield Scenario("server beside the hook, no home", "claude-code", env=no_home,
                       hook=self.beside_the_hook())
        yield Scenario("server on the path", "codex", env=environment(
            "AnswersEveryTool", PATH="/nonexistent:" + CHILDREN, QUILLSTEAD_HOOK_LOG=log))
        yield Scenario("a log", "cursor", env=environment(server, QUILLSTEAD_HOOK_LOG=log))
        yield Scenario("a large answer", "opencode", env=environment(
            server, QUILLSTEAD_TEST_RULES_SIZE=str(LARGE), QUILLSTEAD_HOOK_LOG=log))

    def test_a_served_prompt_survives_the_failure_of_any_call(self):
        for scenario in self.prompts():
            self.sweep(scenario)
        self.settle()

    def test_every_slot_survives_the_failure_of_any_call(self):
        slots = [("cursor", "rules"), ("codex", "index"), ("claude-code", "recall")]
        for harness, slot in slots if LONG else slots[:1]:
            self.sweep(Scenario("slot", harness, slot, environment(child("AnswersEveryTool"))))
        self.settle()

    def test_a_stamped_call_survives_the_failure_of_any_call(self):
        for harness in HARNESSES:
            self.sweep(Scenario("stamp", harness, "pretool"))
        self.settle()

    def test_a_refusal_survives_the_failure_of_any_call(self):
        # Nothing is prepared for a refusal. A C library that gets its first memory by mmap has none then.
        self.sweep(Scenario("no such slot", "codex", "nonsense"), silent_without=("mmap",))
        self.settle()

    def test_a_failing_server_is_survived_whatever_fails_besides(self):
        self.sweep(Scenario("dies", "cursor", env=environment(child("DiesBySignal"))))
        self.sweep(Scenario("missing", "claude-code", env=environment("/nonexistent")))
        self.settle()

    def test_a_server_over_its_leash_is_survived_whatever_fails_besides(self):
        scenario = Scenario("hangs", "codex", env=environment(child("WritesThenSleeps")))
        calls = set(FAULTS) if LONG else {"wait4"}
        self.sweep(scenario, calls - {"kill"})
        left = leftovers()
        # Where the kill itself is what fails, the server is all that may be left.
        self.sweep(scenario, {"kill"})
        left += set(leftovers()) - {"WritesThenSleep"}
        self.assertFalse(left)
        self.settle()

    def test_a_child_that_fails_before_it_runs_the_server_is_survived(self):
        """The calls between the fork and the server, which only the child makes, each process
        counted by itself; strace leaves the hook's own start alone."""
        scenario = Scenario("child", "cursor", env=environment(child("AnswersEveryTool")))
        report = os.path.join(self.directory, "child")
        for call, errors in (("dup2", "EBADF EBUSY EINTR EMFILE"),
                             ("close_range", "EINVAL EMFILE ENOMEM ENOSYS"),
                             ("execve", "E2BIG EACCES EAGAIN EIO ENOENT ENOMEM ETXTBSY")):
            for error in errors.split():
                for occurrence in range(1, 5):
                    result = traced(scenario, "-e", "trace=" + call, "-e",
                                    "inject=%s:error=%s:when=%d" % (call, error, occurrence),
                                    report=report, follow=("-f",))
                    if "INJECTED" not in read_file(report):
                        break
                    self.note("%s %d %s" % (call, occurrence, error),
                              scenario.complaint(result, None))
        self.settle()

    def test_a_call_that_goes_on_failing_is_survived_without_a_spin(self):
        scenario = Scenario("for good", "codex", env=environment(child("AnswersEveryTool")))
        trace = Trace(scenario, self.directory)
        # Errors that ask for another try, and so mean nothing when they never end, are left out.
        cases = [(call, fault, trace.at_start.get(call, 0) + first)
                 for call in trace.calls for fault in FAULTS[call] for first in (1, 2, 4)
                 if fault != "error=EINTR" and
                 not (fault == "error=EAGAIN" and call in ("read", "write", "writev"))]

        def fail_for_good(case):
            call, fault, first = case
            report = os.path.join(self.directory, "%s-%s-%d" % case)
            result = traced(scenario, "-e", "trace=" + call, "-e",
                            "inject=%s:%s:when=%d+" % case, report=report)
            self.note("%s %s from %d on" % case, self.complaint(
                scenario, trace, result, read_file(report), fault))
        at_once(8, fail_for_good, cases)
        self.settle()


if __name__ == "__main__":
    unittest.main()
