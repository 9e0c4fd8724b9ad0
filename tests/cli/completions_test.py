#!/usr/bin/env python3
"""The completions in the shells that they are for. QUILLSTEAD names the program.

    completions_test.py bash|zsh|fish     ends with 77 when there is no such shell
"""

import os
import pathlib
import pty
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = os.environ["QUILLSTEAD"]
COMMANDS = ["doctor", "help", "init", "install", "log", "recall", "trust", "uninstall"]
HARNESSES = ["claude-code", "codex", "cursor", "opencode"]


class Shell:
    """A directory with the completions, and questions to one shell."""

    def __init__(self, directory):
        self.directory = pathlib.Path(directory)
        self.environment = {"HOME": directory, "PATH": os.environ["PATH"], "TERM": "dumb", "LC_ALL": "C.UTF-8"}
        subprocess.run([PROGRAM, "texts", directory], check=True, env=self.environment)
        (self.directory / "only.html").touch()

    def output(self, *command):
        ended = subprocess.run(command, env=self.environment, cwd=self.directory, capture_output=True, text=True,
                               timeout=60, check=False)
        assert ended.returncode == 0 and not ended.stderr, ended
        return ended.stdout


class Bash(Shell):
    def check(self, program):
        return self.output("bash", "-n", f"{program}.bash")

    def offered(self, line):
        words = line.split(" ")
        script = (f"source {words[0]}.bash; COMP_WORDS=({' '.join(words[:-1])} '{words[-1]}'); COMP_CWORD={len(words) - 1};"
                  f" _{words[0].replace('-', '_')}; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
        return self.output("bash", "--norc", "-c", script).split()


class Fish(Shell):
    def check(self, program):
        return self.output("fish", "--no-execute", f"{program}.fish")

    def offered(self, line):
        text = self.output("fish", "--no-config", "-c", f"source {line.split(' ')[0]}.fish; complete -C '{line}'")
        return [match.split("\t")[0] for match in text.splitlines()]


class Zsh(Shell):
    """Completes in a terminal, with every match written down."""

    SETUP = """PS1= PS2= RPS1=
fpath=($PWD $fpath)  # a dot would be skipped
autoload -Uz compinit && compinit -u -D
compadd() {
  local -a hits
  [[ ${@[1,(i)(-|--)]} == *-[OAD]* ]] || { builtin compadd -O hits "$@"; print -rl -- $hits >>offered }
  builtin compadd "$@"
}
tell() { print . >>offered }
comppostfuncs=(tell)
bindkey '^I' complete-word
unsetopt beep
print . >>offered
"""

    def check(self, program):
        return self.output("zsh", "-n", f"_{program}")

    def offered(self, line):
        told = self.directory / "offered"
        told.unlink(missing_ok=True)
        (self.directory / "setup").write_text(self.SETUP)
        process, terminal = pty.fork()
        if process == 0:
            os.chdir(self.directory)
            os.execvpe("zsh", ["zsh", "-f", "-i"], self.environment)
        try:
            os.write(terminal, b"source ./setup\n")
            self.wait_for(told, 1, terminal)
            os.write(terminal, line.encode() + b"\t")
            return [word for word in self.wait_for(told, 2, terminal) if word != "."]
        finally:
            os.kill(process, 9)
            os.waitpid(process, 0)
            os.close(terminal)

    def wait_for(self, told, dots, terminal):
        os.set_blocking(terminal, False)
        deadline = time.monotonic() + 60
        seen = b""
        while time.monotonic() < deadline:
            try:
                seen += os.read(terminal, 65536)
            except OSError:
                pass
            words = told.read_text().split("\n") if told.exists() else []
            if words.count(".") >= dots:
                return [word for word in words if word]
            time.sleep(0.02)
        raise AssertionError(f"no answer; the terminal shows {seen}")


class Completions(unittest.TestCase):
    name = "bash"

    @classmethod
    def setUpClass(cls):
        cls.stage = tempfile.TemporaryDirectory()
        cls.shell = {"bash": Bash, "zsh": Zsh, "fish": Fish}[cls.name](cls.stage.name)

    @classmethod
    def tearDownClass(cls):
        cls.stage.cleanup()

    def offered(self, line):
        return sorted(set(self.shell.offered(line)))

    def options_told_by_help(self, command):
        text = subprocess.run([PROGRAM, "help", *command], capture_output=True, text=True, check=True).stdout
        return sorted(set(re.findall(r"^ +(?:-\w, )?(--[\w-]+)", text, re.M)))

    def test_are_taken_without_a_complaint(self):
        for program in ("quillstead", "quillstead-hook", "quillstead-mcp"):
            self.assertEqual(self.shell.check(program), "")

    def test_offer_every_command(self):
        offered = self.offered("quillstead ")
        self.assertEqual([word for word in offered if not word.startswith("-")], COMMANDS)
        self.assertEqual(self.offered("quillstead d"), ["doctor"])
        self.assertEqual(self.offered("quillstead tex"), [])

    def test_offer_every_option_that_the_help_tells(self):
        for command in COMMANDS[:1] + COMMANDS[2:]:
            told = self.options_told_by_help([command])
            self.assertGreater(len(told), 0)
            self.assertEqual([word for word in self.offered(f"quillstead {command} --")], told)
        self.assertEqual(self.offered("quillstead --"), self.options_told_by_help([]))

    def test_offer_what_a_word_or_an_option_can_be(self):
        self.assertEqual([word for word in self.offered("quillstead install ") if not word.startswith("-")], HARNESSES)
        self.assertEqual(self.offered("quillstead doctor co"), ["codex"])
        self.assertEqual(self.offered("quillstead recall --harness "), HARNESSES)
        self.assertEqual(self.offered("quillstead-hook --slot pre"), ["pretool"])
        self.assertEqual(self.offered("quillstead-hook --decision "), ["allow"])
        self.assertIn("--version", self.offered("quillstead-mcp --"))
        self.assertIn("only.html", self.offered("quillstead log --html on"))
        self.assertNotIn("only.html", self.offered("quillstead recall --harness on"))


if __name__ == "__main__":
    Completions.name = sys.argv[1]
    if not shutil.which(Completions.name):
        print(f"left out: there is no {Completions.name}")
        sys.exit(77)
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
