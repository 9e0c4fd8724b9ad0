#!/usr/bin/env python3
"""Every command and variable that a page names is one that exists. QUILLSTEAD names the built program."""

import json
import os
import pathlib
import re
import shlex
import subprocess
import tempfile
import unittest

import pages

PLACEHOLDER = re.compile(r"[A-Z][A-Z.]*|/abs|…|<.*>|\.\.\.")


def manual(program, directory):
    """The man page of a program, as plain text, by command; "" is what the program takes itself."""
    page = (pathlib.Path(directory) / f"{program}.1").read_text(encoding="utf-8").replace("\\-", "-")
    commands, _, own = page.partition(".SH OPTIONS")
    sections = {"": own}
    for section in commands.split("\n.SS ")[1:]:
        command, _, rest = section.partition("\n")
        sections[command] = rest
    return sections


class Commands(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as directory:
            subprocess.run([os.environ["QUILLSTEAD"], "texts", directory], check=True)
            cls.manuals = {name: manual(name, directory)
                           for name in ["quillstead", "quillstead-hook", "quillstead-mcp"]}
        cls.harnesses = re.findall(r"[a-z-]+", re.search(
            r"--harness HARNESS\n[^:]*: (.*)\.", cls.manuals["quillstead-hook"][""]).group(1))

    def calls(self):
        """Every call of a program in the pages: the page, and the words of the call."""
        for page in pages.pages():
            lines = [line for kind, block in pages.blocks(page) if kind in ("", "sh")
                     for line in block.replace("\\\n", " ").splitlines()]
            spans = [span for span in pages.spans(page) if " " in span]
            for line in lines + spans:
                for words in self.commands_in(line):
                    yield pages.name(page), words

    @staticmethod
    def commands_in(line):
        lexer = shlex.shlex(line, posix=True, punctuation_chars="|&;<>()")
        lexer.whitespace_split = True
        try:
            words = list(lexer)
        except ValueError:  # a quotation mark alone: a sentence
            return
        call = []
        for word in [*words, ";"]:
            if set(word) <= set("|&;()<>"):
                yield call
                call = []
            elif call or not re.match(r"\w+=|env$|-u$|HOME$|xargs$|nice$", word):
                call.append(word)

    def calls_of(self, program):
        found = [(page, words[1:]) for page, words in self.calls()
                 if words and (words[0] == program or words[0].endswith("/" + program))]
        self.assertTrue(found, program)
        return found

    def check_options(self, words, manual):
        options = [word.strip("[]").partition("=")[0] for word in words if word.strip("[]").startswith("-")]
        for option in options:
            self.assertRegex(manual, rf"(?m)^\.B .*(?<![\w-]){re.escape(option)}(?![\w-])")

    def check_harness(self, word):
        if not PLACEHOLDER.fullmatch(word.strip("[]")):
            self.assertIn(word, self.harnesses)

    def test_of_quillstead_are_known(self):
        manual = self.manuals["quillstead"]
        for page, words in self.calls_of("quillstead"):
            if not words:
                continue
            with self.subTest(page=page, call=" ".join(words)):
                command = words[0]
                if command.startswith("-") or PLACEHOLDER.fullmatch(command):
                    self.check_options(words, manual[""])
                    continue
                self.assertIn(command, manual)
                self.check_options(words[1:], manual[command] + "\n.B --help")
                if command in ("install", "uninstall", "doctor"):
                    for word in words[1:]:
                        if not word.strip("[]").startswith("-"):
                            self.check_harness(word)

    def test_of_the_hook_and_the_server_are_known(self):
        for program in ["quillstead-hook", "quillstead-mcp"]:
            for page, words in self.calls_of(program):
                with self.subTest(page=page, program=program, call=" ".join(words)):
                    self.check_options(words, self.manuals[program][""])
                    if "--harness" in words:
                        self.check_harness(words[words.index("--harness") + 1])

    def test_have_a_manual_for_each_program(self):
        for program, manual in self.manuals.items():
            with self.subTest(program=program):
                self.assertIn("--version", manual[""])

    def test_are_what_a_shell_takes(self):
        for page in pages.pages():
            for kind, block in pages.blocks(page):
                if kind == "sh":
                    with self.subTest(page=pages.name(page), block=block):
                        shell = subprocess.run(["bash", "-n"], input=block, text=True, capture_output=True)
                        self.assertEqual(shell.stderr, "")

    def test_name_scripts_and_purposes_that_exist(self):
        for page, words in self.calls():
            if not words or not words[0].startswith("scripts/"):
                continue
            with self.subTest(page=page, call=" ".join(words)):
                script = pages.SOURCE / words[0]
                self.assertTrue(os.access(script, os.X_OK), "there is no such script")
                for word in words[1:]:
                    if re.fullmatch(r"-*[a-z-]+", word) and script.name != "fuzz":
                        self.assertIn(word, script.read_text(encoding="utf-8"))

    def test_name_presets_that_exist(self):
        presets = json.loads((pages.SOURCE / "CMakePresets.json").read_text(encoding="utf-8"))
        known = {preset["name"] for preset in presets["configurePresets"]}
        for page in pages.pages():
            for preset in re.findall(r"--preset[ =]([\w-]+)", pages.text(page)):
                with self.subTest(page=pages.name(page), preset=preset):
                    self.assertIn(preset, known)

    def test_name_tests_that_exist(self):
        tests = pages.SOURCE / "tests"
        sources = "\n".join(str(file) + "\n" + file.read_text(encoding="utf-8", errors="replace")
                            for file in sorted(tests.rglob("*")) if file.suffix in (".cpp", ".txt", ".py"))
        for page in pages.pages():
            for words in re.findall(r"ctest [^`\n]*-R '?([\w.|\\*]+)", pages.text(page)):
                for pattern in words.replace("\\|", "|").split("|"):
                    with self.subTest(page=pages.name(page), pattern=pattern):
                        suite, _, case = pattern.strip("\\.*").partition(".")
                        self.assertIn(suite, sources)
                        self.assertIn(case, sources)


class Packages(unittest.TestCase):
    """What scripts/release makes, by the sources of what packs it."""

    @classmethod
    def setUpClass(cls):
        version = re.search(r"^project\(.* VERSION ([\d.]+)", pages.text("CMakeLists.txt"), re.MULTILINE).group(1)
        packed = {"npm/pack": (r'"name": "(quillstead[\w-]*)"', "{}-{}.tgz"),
                  "deb/pack": (r'"linux-\w+": "(\w+)"', "quillstead_{1}_{0}.deb"),
                  "homebrew/formula": (r'"\w+": "((?:linux|macos)-\w+)"', "quillstead-{1}-{0}.tar.gz")}
        cls.version, cls.made = version, {"quillstead.rb"}
        for source, (pattern, name) in packed.items():
            found = set(re.findall(pattern, pages.text(f"packaging/{source}")))
            assert len(found) > 1, source
            cls.made.update(name.format(each, version) for each in found)

    def named(self, text):
        """The packages that a text names; VERSION stands for our version."""
        text = text.replace("VERSION", self.version)
        for word in re.findall(r"quillstead[\w.{},-]*\.(?:tgz|tar\.gz|deb|rb)\b", text):
            start, braces, rest = re.fullmatch(r"([^{]*)(?:\{(.*)\})?(.*)", word).groups()
            yield from (start + each + rest for each in (braces or "").split(","))

    def test_that_the_pages_name_are_made(self):
        for page in pages.pages():
            for name in self.named(pages.text(page)):
                with self.subTest(page=pages.name(page), name=name):
                    self.assertIn(name, self.made)

    def test_that_are_made_are_told(self):
        self.assertEqual(set(self.named(pages.text("docs/installing.md"))), self.made)

    def test_can_be_installed_with_one_line_each(self):
        block = next(block for kind, block in pages.blocks("README.md") if "dist/" in block)
        self.assertEqual([re.sub("^sudo ", "", line).split()[0] for line in block.splitlines()],
                         ["npm", "brew", "dpkg", "tar"])


class Variables(unittest.TestCase):
    NAME = re.compile(r"QUILLSTEAD_[A-Z_]*[A-Z]")

    def named_in(self, *directories):
        found = set()
        for directory in directories:
            for file in (pages.SOURCE / directory).rglob("*"):
                if file.is_file() and "node_modules" not in file.parts:
                    found.update(self.NAME.findall(file.read_text(encoding="utf-8", errors="replace")))
        return found

    def test_that_the_pages_name_are_read_somewhere(self):
        known = self.named_in("src", "integrations", "scripts", "tests/faults", "tests/harnesses", "cmake",
                              "packaging")
        known.update(self.NAME.findall(pages.text("CMakeLists.txt")))
        for page in pages.pages():
            for variable in sorted(set(self.NAME.findall(pages.text(page)))):
                with self.subTest(page=pages.name(page), variable=variable):
                    self.assertIn(variable, known)

    def test_that_the_programs_read_are_told(self):
        told = set()
        for page in pages.pages():
            told.update(self.NAME.findall(pages.text(page)))
        read = set()
        for file in (pages.SOURCE / "src").rglob("*.cpp"):
            read.update(re.findall(r'"(QUILLSTEAD_[A-Z_]*[A-Z])"', file.read_text(encoding="utf-8")))
        self.assertIn("QUILLSTEAD_HOME", read)
        self.assertEqual(read - told, set())


class Troubleshooting(unittest.TestCase):
    PAGE = "docs/troubleshooting.md"

    @classmethod
    def setUpClass(cls):
        cls.source = ""
        for file in sorted((pages.SOURCE / "src/cli/Doctor").glob("*.cpp")):
            cls.source += re.sub(r'"\s*\n\s*"', "", file.read_text(encoding="utf-8"))

    def told(self):
        """What the page says that doctor says."""
        for table in re.findall(r"(?:^\|.*\n)+", pages.text(self.PAGE), re.MULTILINE):
            rows = [re.split(r"(?<!\\)\|", row)[1:-1] for row in table.splitlines()]
            heading = [cell.strip() for cell in rows[0]]
            if "doctor says" in heading:
                for row in rows[2:]:
                    yield from re.findall(r"`([^`]+)`", row[heading.index("doctor says")])

    def test_quotes_what_doctor_prints(self):
        told = list(self.told())
        self.assertGreater(len(told), 20)
        for message in told:
            with self.subTest(message=message):
                kind = re.fullmatch(r"(?:<harness>|codex)(\.[a-z]+)", message)
                self.assertIn(kind.group(1) if kind else message, self.source)

    def test_has_every_check(self):
        checks = set(re.findall(r'"((?:server|store|log|codex)\.[a-z]+)"', self.source))
        checks |= {f"<harness>{kind}" for kind in re.findall(r'(?:harness|string\(harness\)) \+ "(\.[a-z]+)"', self.source)}
        self.assertEqual(len(checks), 10)
        self.assertEqual(checks - set(self.told()), set())


if __name__ == "__main__":
    unittest.main()
