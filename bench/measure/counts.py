"""What one run costs in counts that repeat, whatever else the machine is doing: the instructions it
executes in user space, and the system calls of it and of the processes that it starts.

Everything that would change the counts from machine to machine is fixed: the environment (the C
library looks at every variable when it starts), the directory and the names of the programs (all of
one length), and with them the payload. Readings of the clock are left out: whether they are system
calls depends on the machine.
"""

import os
import shutil
import subprocess
import tempfile

import payloads

# Waiting for a child can take a poll more or less; the least of a few runs is what it takes.
TRIES = 3
# Valgrind cannot always deliver a signal while there is a large buffer on the stack. It ends the
# program then, on a busy machine one run in some dozens.
VALGRIND_FAILURE = "Can't extend stack"
VALGRIND_TRIES = 10
CLOCK_READINGS = "clock_gettime,gettimeofday,time"

PRETOOL = ("--harness", "claude-code", "--slot", "pretool")
RECALL = ("--harness", "claude-code", "--slot", "recall")
REFUSAL = ("--harness", "unheard-of")


def text_of(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


class Bench:
    """A directory of its own in which programs run one at a time under a fixed environment."""

    def __enter__(self):
        self.directory = tempfile.mkdtemp(prefix="quillstead-", dir="/tmp")
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.directory)

    def place(self, program):
        """Copies the program in, and gives the name to run it by."""
        shutil.copy(program, self.directory)
        return "./" + os.path.basename(program)

    def run(self, command, payload, environment=None):
        """Runs the command with the payload as its input. Its output, once it has ended well."""
        variables = {"PATH": "/usr/bin:/bin", "HOME": "/", "QUILLSTEAD_HOOK_LOG": "log"}
        ended = subprocess.run(command, cwd=self.directory, env=variables | (environment or {}),
                               input=payload.encode(), capture_output=True, check=False)
        if ended.returncode != 0:
            raise RuntimeError(f"{' '.join(command)}: status {ended.returncode}\n"
                               f"{ended.stderr.decode(errors='replace')}")
        return ended.stdout

    def instructions(self, command, payload, environment=None):
        """Instructions in user space, without those of child processes."""
        log = os.path.join(self.directory, "valgrind.log")
        counted = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
                   f"--log-file={log}", *command]
        for _ in range(VALGRIND_TRIES):
            try:
                self.run(counted, payload, environment)
            except RuntimeError:
                if VALGRIND_FAILURE not in text_of(log):
                    raise
            else:
                return min(int(line.split()[-1]) for line in text_of(log).splitlines()
                           if "Collected :" in line)
        raise RuntimeError(f"{' '.join(counted)}: {VALGRIND_FAILURE}, {VALGRIND_TRIES} times")

    def system_calls(self, command, payload, environment=None):
        """System calls, with those of child processes."""
        table = os.path.join(self.directory, "strace.table")
        self.run(["strace", "-f", "-c", "-U", "calls,name", "-e", f"trace=!{CLOCK_READINGS}",
                  "-o", table, *command], payload, environment)
        rows = [line.split() for line in text_of(table).splitlines()]
        return next(int(row[0]) for row in rows if row and row[-1] == "total")

    def least(self, count, command, payload, environment=None):
        """The least that `count`, one of the two above, gives in a few tries."""
        return min(count(command, payload, environment) for _ in range(TRIES))


def hook_runs(bench, hook, server):
    """The hook's runs by name: command, payload, environment, and what its output has to hold."""
    hook, server = bench.place(hook), bench.place(server)
    served = {"QUILLSTEAD_MCP_BIN": server}
    return {
        "pretool": ([hook, *PRETOOL], payloads.tool_call(512, bench.directory), {},
                    b'"_quillstead_subagent":"a7f3c2"'),
        "recall": ([hook, *RECALL], payloads.prompt(bench.directory), served,
                   b"<quillstead-memory>"),
        "refusal": ([hook, *REFUSAL], payloads.prompt(bench.directory), {}, b'{"continue":true}'),
    }
