#!/usr/bin/env python3
"""`quillstead install` and `uninstall` in made-up homes: every file of every harness in every state
that a file can be in, byte for byte. QUILLSTEAD names the program."""

import json
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = pathlib.Path(os.environ["QUILLSTEAD"]).resolve()
HOOK = str(PROGRAM.parent / "quillstead-hook")
SERVER = str(PROGRAM.parent / "quillstead-mcp")
IS_LINUX = sys.platform.startswith("linux")
KILLS = int(os.environ.get("QUILLSTEAD_KILLS", "200"))

# Harness, file, and the path to an array or object of the user's beside which ours go.
FILES = {
    "claude-code settings": ("claude-code", ".claude/settings.json", ["hooks", "UserPromptSubmit"]),
    "claude-code servers": ("claude-code", ".claude.json", ["mcpServers"]),
    "codex hooks": ("codex", ".codex/hooks.json", ["hooks", "PreToolUse"]),
    "cursor hooks": ("cursor", ".cursor/hooks.json", ["hooks", "preToolUse"]),
    "cursor servers": ("cursor", ".cursor/mcp.json", ["mcpServers"]),
    "opencode servers": ("opencode", ".config/opencode/opencode.json", ["mcp"]),
    "opencode servers with comments": ("opencode", ".config/opencode/opencode.jsonc", ["mcp"]),
}
TOML = ("codex", ".codex/config.toml")
PLUGIN = ("opencode", ".config/opencode/plugins/quillstead.js")
HARNESSES = list(json.loads((pathlib.Path(__file__).parent / "../helpers/harnesses.json").read_text()))


class Home:
    """A home of its own, and the program run in it."""

    def __init__(self, name="home"):
        self.directory = tempfile.TemporaryDirectory(prefix="quillstead-")
        self.root = pathlib.Path(self.directory.name).resolve() / name
        self.root.mkdir()
        self.environment = {"HOME": str(self.root), "PATH": "/usr/bin:/bin"}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.directory.cleanup()

    def write(self, name, content):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        return path

    def run(self, *arguments, program=PROGRAM):
        ended = subprocess.run([str(program), *arguments], env=self.environment, timeout=60,
                               capture_output=True, cwd=self.root, check=False)
        ended.stdout, ended.stderr = ended.stdout.decode(), ended.stderr.decode()
        return ended

    def start(self, *arguments):
        return subprocess.Popen([str(PROGRAM), *arguments], env=self.environment, cwd=self.root,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def settings(self):
        """All files but the store, the log and the copies."""
        return {str(path.relative_to(self.root)): path.read_bytes()
                for path in self.root.rglob("*") if path.is_file()
                and ".quillstead/" not in str(path.relative_to(self.root))
                and ".local/state" not in str(path)}

    def everything(self):
        return sorted((str(path), path.lstat().st_mode, path.lstat().st_mtime_ns)
                      for path in self.root.rglob("*"))


def nested(keys, value):
    for key in reversed(keys):
        value = {key: value}
    return value


def foreign(keys):
    """Settings of the user's around and beside the place for ours."""
    if keys[0] == "hooks":
        handler = {"type": "command", "command": "/usr/bin/env true", "timeout": 7}
        is_grouped = keys[1] != "preToolUse"
        entry = {"matcher": "Bash", "hooks": [handler]} if is_grouped else {"command": "x y"}
        beside = {"hooks": {keys[1]: [entry], "Stop": []}}
    else:
        beside = nested(keys, {"other": {"type": "local", "command": ["x"], "url": "http://h/"}})
    return {"version": 1, "first": [1, {"a": None}], **beside, "last": {"é": "\u2028\\\"//"}}


def without_comments(text):
    """JSON without comments and commas too many, for json.loads."""
    pieces = re.compile(r'"(?:\\.|[^"\\])*"|//[^\r\n]*|/\*.*?\*/', re.S)
    text = pieces.sub(lambda m: m[0] if m[0][0] == '"' else " ", text.lstrip("\ufeff"))
    return re.sub(r'("(?:\\.|[^"\\])*")|,(?=\s*[}\]])', lambda m: m[1] or "", text)


def parsed(content):
    text = without_comments(content.decode())
    return json.loads(text, parse_int=str, parse_float=str) if text.strip() else {}


def commented(text):
    """Comments wherever they may be."""
    out = []
    for i, line in enumerate(text.split("\n")):
        line = re.sub(r"([\[{,]) ?$", r"\1 /* a, \" } */", line)
        line = re.sub(r'": ', '" /* b */ : /* c */ ', line, count=1)
        out.append(line + (" // d {" if i % 2 else ""))
        if i % 3 == 0:
            out.append("// e ]")
    return "/* top */ // of it\n" + "\n".join(out) + "\n// tail"


def with_last_commas(text):
    return re.sub(r'(["\d\w}\]])(\s*\n\s*[}\]])', r"\1,\2", text)


def layouts(keys):
    """Every way to write settings that ours are added to."""
    value = foreign(keys)
    two = json.dumps(value, indent=2, ensure_ascii=False)
    yield "absent", None
    yield "nothing in it", b""
    yield "a line end in it", b"\n"
    yield "a byte order mark in it", b"\xef\xbb\xbf"
    yield "a comment in it", b"// to do"
    for empty in ["{}", "{}\n", "{ }", "{\n}\n", "{}\n\n", "\n{}\n\n", "{\n\n\n}", "{ // c\n}", "{/* c */}"]:
        yield f"empty {empty!r}", empty.encode()
    yield "compact", json.dumps(value, separators=(",", ":")).encode()
    yield "on one line", json.dumps(value).encode()
    yield "two blanks", two.encode() + b"\n"
    yield "four blanks", json.dumps(value, indent=4).encode() + b"\n"
    yield "tab", json.dumps(value, indent="\t").encode() + b"\n"
    yield "carriage returns", two.replace("\n", "\r\n").encode()
    yield "carriage returns alone", two.replace("\n", "\r").encode()
    yield "byte order mark", b"\xef\xbb\xbf" + two.encode()
    yield "no last line end", two.encode()
    yield "comments", commented(two).encode()
    yield "comments and returns", commented(two).replace("\n", "\r\n").encode()
    yield "last commas", with_last_commas(two).encode()
    yield "comments and last commas", commented(with_last_commas(two)).encode()
    yield "long numbers", two.replace("1,", "123456789012345678901234567890.5e-7,", 1).encode()
    empty_within = nested(keys, [] if keys[0] == "hooks" else {})
    yield "empty within", json.dumps({"a": 1, **empty_within}, indent=2).encode()
    yield "empty within, on one line", json.dumps(empty_within).encode()
    yield "empty within, compact", json.dumps(empty_within, separators=(",", ":")).encode()
    yield "empty above", json.dumps({keys[0]: {}}, indent=2).encode()
    yield "empty above, with a version", json.dumps({keys[0]: {}, "version": 1}, indent=2).encode()
    yield "twice the same key", b'{"' + keys[0].encode() + b'": 1, "' + keys[0].encode() + b'": {}}'
    yield "uneven", b'{"a":1,\n  "b" :2 , "c":\n[ 1,2\n]  }  \n '


def patched(before, diff):
    """What `diff`, of one file, makes of `before`."""
    lines = before.split(b"\n")
    lines = [line + b"\n" for line in lines[:-1]] + ([lines[-1]] if lines[-1] else [])
    out, place = [], 0
    steps = diff.split(b"\n")[2:]
    for i, step in enumerate(steps):
        header = re.match(rb"@@ -(\d+),(\d+) \+(\d+),(\d+) @@", step)
        if header:
            start = int(header[1]) - (1 if int(header[2]) else 0)
            out += lines[place:start]
            place = start
            continue
        if not step or step.startswith(b"\\"):
            continue
        is_cut = i + 1 < len(steps) and steps[i + 1].startswith(b"\\")
        line = step[1:] + (b"" if is_cut else b"\n")
        if step[:1] in b" -":
            assert lines[place] == line, (lines[place], line)
            place += 1
        if step[:1] in b" +":
            out.append(line)
    return b"".join(out + lines[place:])


def our_handlers(value):
    """All handlers that run our hook, wherever they are, with their events."""
    found = []
    for event, entries in (value.get("hooks") or {}).items():
        for entry in entries:
            for handler in entry.get("hooks", [entry]):
                if "quillstead-hook" in handler.get("command", ""):
                    found.append((event, handler))
    return found


def expected_handlers(harness):
    return {"claude-code": 5, "codex": 2, "cursor": 2}[harness]


class Tables(unittest.TestCase):
    """Each file in each state, installed, installed again, shown, and uninstalled."""

    cases = 0

    @classmethod
    def tearDownClass(cls):
        print(f"{cls.cases} cases", file=sys.stderr)

    def check_all(self, name, harness, file, content):
        type(self).cases += 1
        with self.subTest(file=name, content=content), Home() as home:
            path = home.root / file
            if content is not None:
                home.write(file, content)
            before = home.settings()

            untouched = home.everything()
            shown = home.run("install", harness, "--dry-run")
            self.assertEqual(shown.returncode, 0, shown.stderr)
            self.assertEqual(home.everything(), untouched, "a dry run wrote something")

            installed = home.run("install", harness)
            self.assertEqual((installed.returncode, installed.stderr), (0, ""))
            self.assertIn(f"{harness}  {path}  added\n", installed.stdout)
            after = home.settings()
            diff = shown.stdout[shown.stdout.index(f"{path}  added\n"):].split("\n", 1)[1]
            diff = re.split(rf"^{harness}  ", diff, flags=re.M)[0]
            self.assertEqual(patched(content or b"", diff.encode()), after[file])
            self.check_content(harness, file, content, after[file])
            copies = list((home.root / ".local/state/quillstead").glob("backups/*"))
            self.assertEqual([copy.read_bytes() for copy in copies],
                             [] if content is None else [content])
            for copy in copies:
                self.assertIn(str(copy), installed.stdout)
                self.assertEqual(copy.stat().st_mode & 0o777, 0o600)

            again = home.run("install", harness)
            self.assertEqual(again.returncode, 0)
            self.assertIn(f"{harness}  {path}  unchanged\n", again.stdout)
            self.assertEqual(home.settings(), after, "a second install changed something")

            away = home.run("uninstall", harness)
            self.assertEqual((away.returncode, away.stderr), (0, ""))
            self.assertIn(f"{harness}  {path}  removed\n", away.stdout)
            self.assertEqual(home.settings(), before, "uninstall did not give back the original")

            nothing = home.run("uninstall", harness)
            self.assertIn(f"{harness}  {path}  unchanged\n", nothing.stdout)
            self.assertEqual((nothing.returncode, home.settings()), (0, before))

    def check_content(self, harness, file, content, after):
        if not file.endswith((".json", ".jsonc")):
            return
        value = parsed(after)
        if "mcp" in file or "claude.json" in file or "opencode" in file:
            key = "mcp" if harness == "opencode" else "mcpServers"
            command = value[key].pop("quillstead")["command"]
            self.assertEqual(command, [SERVER] if harness == "opencode" else SERVER)
        else:
            self.assertEqual(len(our_handlers(value)), expected_handlers(harness))
        if content and b"other" in content:
            self.assertEqual(value, parsed(content))

    def test_json_files(self):
        for name, (harness, file, keys) in FILES.items():
            for _, content in layouts(keys):
                if content is None and file.endswith("c"):
                    continue
                self.check_all(name, harness, file, content)

    def test_toml(self):
        harness, file = TOML
        for content in [None, b"", b"\n", b"\xef\xbb\xbf", b"# note", b'model = "x"', b'model = "x"\n',
                        b'model = "x"\r\n[a]\r\nb = 1', b"a = 1\n\n\n", b"a = 1 # c\n  \t",
                        b"[mcp_servers.other]\ncommand = 'y'\n", b"[mcp_servers]\nother.command = 'y'\n",
                        b'big = 9007199254740993\nlist = [\n  1, # c\n  2,\n]\nt = """\n[mcp_servers.quillstead]\n"""\n',
                        b"x = 1979-05-27T07:32:00Z\n\xc3\xa4 = 1".replace(b"\xc3\xa4", '"ä"'.encode())]:
            self.check_all("codex servers", harness, file, content)

    def test_a_path_with_a_character_that_toml_escapes(self):
        with Home("a\x7fb") as home:
            programs = home.root / "bin"
            programs.mkdir()
            for name in ["quillstead", "quillstead-hook", "quillstead-mcp"]:
                shutil.copy2(PROGRAM.parent / name, programs / name)
            ended = home.run("install", "codex", program=programs / "quillstead")
            self.assertEqual((ended.returncode, ended.stderr), (0, ""))
            self.assertIn(b"a\\u007Fb/bin/quillstead-mcp", home.settings()[TOML[1]])

    def test_a_file_on_one_long_line(self):
        with Home() as home:
            home.write(".claude.json", b'{"numbers":[' + b"1," * 300_000 + b"1]}")
            before = home.settings()
            begin = time.monotonic()
            for command in ("install", "uninstall"):
                self.assertEqual(home.run(command, "claude-code").returncode, 0)
            self.assertLess(time.monotonic() - begin, 20)
            self.assertEqual(home.settings(), before)

    def test_plugin(self):
        harness, file = PLUGIN
        self.check_all("plugin", harness, file, None)
        with Home() as home:
            home.write(file, b"export const Mine = async () => ({});\n")
            before = home.settings()[file]
            ended = home.run("install", "opencode")
            self.assertEqual(ended.returncode, 1)
            self.assertIn(f"{file}:1:1: ", ended.stderr)
            self.assertEqual(home.settings()[file], before)
            home.run("uninstall", "opencode")
            self.assertEqual(home.settings(), {file: before})


class Ours(unittest.TestCase):
    """Entries of ours that are there already."""

    def installed(self, harness, file, content, status=0):
        with Home() as home:
            home.write(file, content.encode())
            ended = home.run("install", harness)
            self.assertEqual(ended.returncode, status, ended.stderr)
            first = home.settings()[file]
            home.run("install", harness)
            self.assertEqual(home.settings()[file], first, "a second install changed something")
            home.run("uninstall", harness)
            left = home.settings().get(file)
            return first.decode(), None if left is None else left.decode(), ended.stdout

    def test_an_old_entry_of_claude_code_is_brought_up_to_date_in_place(self):
        old = ('{"hooks": {\n  "UserPromptSubmit": [{"hooks": [\n    {"type": "command", "command": '
               '"/old/quillstead-hook", // mine\n     "args": ["--harness", "claude-code"], '
               '"timeout": 9, "env": 1},\n    {"type": "command", "command": "other"}]}],\n'
               '  "PreToolUse": [{"matcher": "mcp__(plugin_.+_)?quillstead__.*", "hooks": [\n'
               '    {"command": "\'/old/quillstead-hook\' --harness claude-code --slot pretool"}]}]}}')
        new, left, told = self.installed("claude-code", ".claude/settings.json", old)
        self.assertIn("settings.json  updated\n", told)
        handlers = our_handlers(parsed(new.encode()))
        self.assertEqual(sorted((event, tuple(handler["args"][2:])) for event, handler in handlers), [
            ("PreToolUse", ("--slot", "pretool")),
            ("SubagentStart", ("--slot", "rules", "--event", "SubagentStart")),
            ("UserPromptSubmit", ("--slot", "index")), ("UserPromptSubmit", ("--slot", "recall")),
            ("UserPromptSubmit", ("--slot", "rules"))])
        self.assertTrue(all(handler["command"] == HOOK for _, handler in handlers))
        self.assertIn(f'"{HOOK}", // mine\n     "args": ["--harness", "claude-code", "--slot", "rules"], '
                      '"timeout": 9, "env": 1}', new)
        self.assertIn('"matcher": "mcp__quillstead__.*"', new)
        self.assertEqual(parsed(left.encode()),
                         {"hooks": {"UserPromptSubmit": [{"hooks": [{"type": "command", "command": "other"}]}]}})

    def test_codex_and_cursor_keep_what_the_user_added(self):
        old = json.dumps({"hooks": {"UserPromptSubmit": [{"hooks": [
            {"type": "command", "timeout": 3,
             "command": "QUILLSTEAD_HOOK_LOG=/my/log A='b c' \"$HOME/x y\"/quillstead-hook --harness codex --slot recall"}]}]}})
        new, left, _ = self.installed("codex", ".codex/hooks.json", old)
        handler = parsed(new.encode())["hooks"]["UserPromptSubmit"][0]["hooks"][0]
        self.assertEqual(handler["command"], f"QUILLSTEAD_HOOK_LOG=/my/log A='b c' '{HOOK}' --harness codex")
        self.assertEqual((handler["timeout"], handler["additionalContextLimit"]), ("3", "12000"))
        self.assertEqual(left, "{}")

        old = '{"version": 1, "hooks": {"beforeSubmitPrompt": [{"command": "quillstead-hook --harness cursor --slot recall", "timeout": 8, "x": 1}]}}'
        new, left, _ = self.installed("cursor", ".cursor/hooks.json", old)
        self.assertEqual(parsed(new.encode())["hooks"]["beforeSubmitPrompt"],
                         [{"command": f"{HOOK} --harness cursor", "timeout": "8", "x": "1"}])
        self.assertEqual(left, '{"version": 1}')

    def test_entries_that_are_there_twice_become_one(self):
        one = '{"command": "/a/quillstead-hook --harness cursor", "timeout": 6}'
        old = f'{{"version": 1, "hooks": {{"beforeSubmitPrompt": [{one}, {{"command": "x"}}, {one}]}}}}'
        new, _, _ = self.installed("cursor", ".cursor/hooks.json", old)
        self.assertEqual(parsed(new.encode())["hooks"]["beforeSubmitPrompt"],
                         [{"command": f"{HOOK} --harness cursor", "timeout": "6"}, {"command": "x"}])
        group = '{"hooks": [{"command": "/a/quillstead-hook", "args": ["--harness", "claude-code", "--slot", "%s"]}]}'
        groups = ", ".join(group % slot for slot in ["recall", "rules", "recall", "index", "rules"])
        old = f'{{"hooks": {{"UserPromptSubmit": [{groups}]}}}}'
        new, left, _ = self.installed("claude-code", ".claude/settings.json", old)
        slots = [handler["args"][3] for _, handler in our_handlers(parsed(new.encode()))
                 if _ == "UserPromptSubmit"]
        self.assertEqual(slots, ["recall", "rules", "index"])
        self.assertEqual(left, "{}")

    def test_a_program_that_moved_is_followed(self):
        for name, (harness, file, _) in FILES.items():
            with self.subTest(name), Home() as home:
                if file.endswith("jsonc"):
                    home.write(file, b"{}")
                home.run("install", harness)
                path = home.root / file
                now = path.read_bytes()
                directory = str(PROGRAM.parent).encode()
                path.write_bytes(now.replace(directory, b"/moved"))
                ended = home.run("install", harness)
                self.assertIn(f"{file}  updated\n", ended.stdout)
                self.assertEqual(path.read_bytes(), now)

    def test_what_runs_ours_through_another_program_is_the_users(self):
        for command in ["env A=1 /a/quillstead-hook --harness cursor", "timeout 3 quillstead-hook",
                        "/a/quillstead-hook --harness cursor | tee x", "/a/quillstead-hook; true",
                        "x=$(quillstead-hook)", "/a/my-quillstead-hook", "sh -c quillstead-hook",
                        "/a/quillstead-hook-old"]:
            old = json.dumps({"version": 1, "hooks": {"beforeSubmitPrompt": [{"command": command}]}})
            new, left, _ = self.installed("cursor", ".cursor/hooks.json", old)
            handlers = parsed(new.encode())["hooks"]["beforeSubmitPrompt"]
            self.assertEqual(handlers[0], {"command": command})
            self.assertEqual((len(handlers), left), (2, old))
        old = '{"mcpServers": {"quillstead": {"command": "env", "args": ["A=1", "quillstead-mcp"]}}}'
        new, left, told = self.installed("cursor", ".cursor/mcp.json", old)
        self.assertEqual((new, left), (old, old))
        self.assertIn("mcp.json  unchanged\n", told)

    def test_opencode_has_one_server_in_its_two_files(self):
        plain, commented = ".config/opencode/opencode.json", ".config/opencode/opencode.jsonc"
        ours = '{"mcp": {"quillstead": {"type": "local", "command": ["/o/quillstead-mcp"]}}}'
        mine = '{"theme": "x"}'
        for old, new, left in [
            ({plain: ours, commented: mine}, {plain: ours.replace("/o/quillstead-mcp", SERVER), commented: mine},
             {plain: "{}", commented: mine}),
            ({plain: ours, commented: ours}, {plain: "{}", commented: ours.replace("/o/quillstead-mcp", SERVER)},
             {plain: "{}", commented: "{}"}),
        ]:
            for action, wanted in (("install", new), ("uninstall", left)):
                with self.subTest(old=old, action=action), Home() as home:
                    for file, content in old.items():
                        home.write(file, content.encode())
                    self.assertEqual(home.run(action, "opencode").returncode, 0)
                    self.assertEqual({file: home.settings()[file].decode() for file in old}, wanted)
                    again = home.run(action, "opencode")
                    self.assertNotRegex(again.stdout, "added|updated|removed")

    def test_a_server_keeps_what_the_user_added(self):
        old = '{"mcpServers": {"quillstead": {"alwaysLoad": true, "command": "/o/quillstead-mcp", "args": ["x"], "env": {"A": "b"}}, "z": {}}}'
        new, left, _ = self.installed("claude-code", ".claude.json", old)
        self.assertEqual(new, old.replace("/o/quillstead-mcp", SERVER).replace('["x"]', "[]"))
        self.assertEqual(left, '{"mcpServers": {"z": {}}}')
        old = '{"mcp": {"quillstead": {"command": ["/o/quillstead-mcp", "-x"], "enabled": false}}}'
        new, _, _ = self.installed("opencode", ".config/opencode/opencode.json", old)
        self.assertEqual(new, '{"mcp": {"quillstead": {"command": ["%s"], "enabled": false}}}' % SERVER)

    def test_tables_that_define_the_server_already(self):
        both = '["QUILLSTEAD_HOME", "XDG_CACHE_HOME"]'
        for old, new, left in [
            ("[mcp_servers.quillstead] # c\nstartup_timeout_sec = 3\ncommand = '/o/quillstead-mcp' # d\n[x]\n",
             f'[mcp_servers.quillstead] # c\nstartup_timeout_sec = 3\ncommand = "{SERVER}" # d\nenv_vars = {both}\n[x]\n',
             "[x]\n"),
            ("a=1\n[mcp_servers.quillstead]\ncommand = 'quillstead-mcp'", f'a=1\n[mcp_servers.quillstead]\ncommand = "{SERVER}"\nenv_vars = {both}', "a=1"),
            ("[mcp_servers.quillstead]\nenv_vars = [ 'MINE', # m\n]\ncommand = '/ö/quillstead-mcp'\n[mcp_servers.quillstead.env]\nA='b'\n[x]\ny=1\n",
             f"[mcp_servers.quillstead]\nenv_vars = [ 'MINE', \"QUILLSTEAD_HOME\", \"XDG_CACHE_HOME\", # m\n]\ncommand = \"{SERVER}\"\n[mcp_servers.quillstead.env]\nA='b'\n[x]\ny=1\n",
             "[x]\ny=1\n"),
            ("mcp_servers.quillstead.command = '/o/quillstead-mcp'\n", f'mcp_servers.quillstead.command = "{SERVER}"\nmcp_servers.quillstead.env_vars = {both}\n', ""),
            ("[mcp_servers]\nquillstead = { command = '/o/quillstead-mcp' }\no = {}\n", f'[mcp_servers]\nquillstead = {{ command = "{SERVER}", env_vars = {both} }}\no = {{}}\n', "[mcp_servers]\no = {}\n"),
            ("\ufeffmcp_servers.quillstead.command = '/o/quillstead-mcp'\r\n",
             f'\ufeffmcp_servers.quillstead.command = "{SERVER}"\r\nmcp_servers.quillstead.env_vars = {both}\r\n', "\ufeff"),
            ("a=1\n\n[mcp_servers.quillstead]\ncommand = '/o/quillstead-mcp'\n[x]\n",
             f'a=1\n\n[mcp_servers.quillstead]\ncommand = "{SERVER}"\nenv_vars = {both}\n[x]\n', "a=1\n\n[x]\n"),
            ("a=1\n\n \t[mcp_servers.quillstead]\n  command = '/o/quillstead-mcp'\n",
             f'a=1\n\n \t[mcp_servers.quillstead]\n  command = "{SERVER}"\n  env_vars = {both}\n', "a=1\n"),
            *(("a=1\n" + gap + "[mcp_servers.quillstead]\ncommand = '/o/quillstead-mcp'\n\n[x]\n",
               f'a=1\n{gap}[mcp_servers.quillstead]\ncommand = "{SERVER}"\nenv_vars = {both}\n\n[x]\n',
               "a=1\n\n[x]\n") for gap in ("", "\n", " \t\n")),
        ]:
            with self.subTest(old):
                self.assertEqual(self.installed("codex", ".codex/config.toml", old)[:2], (new, left))


class LeftAlone(unittest.TestCase):
    """Files that cannot be dealt with, beside others that are."""

    def check(self, harness, file, content, place, what, action="install"):
        with self.subTest(file=file, content=content), Home() as home:
            home.write(file, content)
            ended = home.run(action, harness)
            self.assertEqual(ended.returncode, 1)
            self.assertIn(f"{harness}  {home.root / file}  left alone\n", ended.stdout)
            self.assertIn(f"{home.root / file}{place}: {what}", ended.stderr)
            self.assertEqual((home.root / file).read_bytes(), content)
            if action == "install":
                self.assertIn("  added\n", ended.stdout, "the others go on")
            self.assertEqual(home.run(action, harness, "--dry-run").returncode, 1)

    def test_malformed_and_odd_shapes(self):
        for _, (harness, file, keys) in FILES.items():
            for action in ["install", "uninstall"]:
                self.check(harness, file, b'{"a": 1\n "b": 2}', ":2:2", 'a comma or "}" is missing', action)
                self.check(harness, file, b"[]", ":1:1", "the top is not an object", action)
                self.check(harness, file, b'{"a": "\xff"}', ":1:8", "this is not UTF-8", action)
                for value in [b"[]", b"null", b'"x"']:
                    content = b'{\n "' + keys[0].encode() + b'": ' + value + b"}"
                    self.check(harness, file, content, f":2:{len(keys[0]) + 6}", f'"{keys[0]}" is not an object', action)
        for content, place in [(b'{"hooks": {"Stop": {}}}', ":1:20"), (b'{"hooks": {"Stop": [1]}}', ":1:21"),
                               (b'{"hooks": {"Stop": [{"command": "x"}]}}', ":1:21"),
                               (b'{"hooks": {"Stop": [{"hooks": [null]}]}}', ":1:32")]:
            self.check("claude-code", ".claude/settings.json", content, place, "")
        self.check("claude-code", ".claude/settings.json", b'{"env": []}', ":1:9", '"env" is not an object')
        self.check("cursor", ".cursor/hooks.json", b'{"version": "1"}', ":1:13", '"version" is not a number')
        self.check("codex", ".codex/config.toml", b"a = 1\nb = = 2\n", ":2:5", "")
        self.check("codex", ".codex/config.toml", b"mcp_servers = { other = {} }\n", ":1:15", "this cannot be edited by lines")
        self.check("codex", ".codex/config.toml", b"[mcp_servers]\nquillstead = 1\n", ":2:14", "")

    def test_codex_hooks_in_its_other_file_are_not_edited_by_install(self):
        ours = (b"[[hooks.UserPromptSubmit]]\n[[hooks.UserPromptSubmit.hooks]]\ntype = 'command'\n"
                b"command = '/a/quillstead-hook --harness codex'\n")
        with Home() as home:
            path = home.write(TOML[1], b"a = 1\n" + ours)
            for _ in range(2):
                ended = home.run("install", "codex")
                self.assertEqual(ended.returncode, 1)
                self.assertIn(f"{path}:3:1: this runs our hook", ended.stderr)
                self.assertNotIn(".codex/hooks.json", home.settings(), "memory would come twice")
            self.assertTrue(path.read_bytes().startswith(b"a = 1\n" + ours))
            self.assertEqual(home.run("install", "codex", "--dry-run").returncode, 1)
        with Home() as home:
            home.write(TOML[1], ours.replace(b"/a/quillstead-hook", b"/a/others-hook"))
            self.assertEqual(home.run("install", "codex").returncode, 0)
            self.assertEqual(len(our_handlers(parsed(home.settings()[".codex/hooks.json"]))), 2)

    def test_codex_hooks_in_its_other_file_go_with_uninstall(self):
        prompt = "[[hooks.UserPromptSubmit]]\n"
        ours = "[[hooks.UserPromptSubmit.hooks]]\ntype = 'command' # c\ncommand = '/ä/quillstead-hook --harness codex'\n"
        other = "[[hooks.UserPromptSubmit.hooks]]\ntype = 'command'\ncommand = 'date'\n"
        tool = "[[hooks.PreToolUse]]\nmatcher = 'x'\n" + ours.replace("UserPromptSubmit", "PreToolUse")
        for before, after in [
            ("a = 1\n" + prompt + ours, "a = 1\n"),
            ("a = 1\n\n" + prompt + ours + "\n" + tool, "a = 1\n"),
            ("a = 1\n\n" + prompt + ours + tool + "\n[b]\nc = 1\n", "a = 1\n\n[b]\nc = 1\n"),
            ("a = 1\n \t\n" + prompt + ours + "\n[b]\n", "a = 1\n\n[b]\n"),
            (prompt + ours + other, prompt + other),
            (prompt + other + ours + tool + "[b]\n", prompt + other + "[b]\n"),
            (prompt + other + prompt + ours, prompt + other),
            (prompt + "mine = true\n" + ours, prompt + "mine = true\n"),
            ("# mine\n[hooks]\n" + prompt + ours, "# mine\n[hooks]\n"),
            (prompt + other, prompt + other),
            ("a = 1\nhooks = { Stop = [{ hooks = [{ command = '/a/quillstead-hook' }] }] }\n", "a = 1\n"),
        ]:
            for end in ("\n", "\r\n"):
                before, after = before.replace("\n", end), after.replace("\n", end)
                with self.subTest(before), Home() as home:
                    path = home.write(TOML[1], before.encode())
                    dry = home.run("uninstall", "codex", "--dry-run")
                    self.assertEqual((dry.returncode, path.read_bytes().decode()), (0, before))
                    self.assertEqual(home.run("uninstall", "codex").returncode, 0)
                    self.assertEqual(path.read_bytes().decode(), after)

    def test_codex_hooks_that_are_no_lines_of_their_own_are_left_to_the_user(self):
        with Home() as home:
            content = b"hooks = { Stop = [{ hooks = [{ command = '/a/quillstead-hook' }, { command = 'date' }] }] }\n"
            path = home.write(TOML[1], content)
            ended = home.run("uninstall", "codex")
            self.assertEqual((ended.returncode, path.read_bytes()), (1, content))
            self.assertIn(f"{path}:1:30: this runs our hook; remove it by hand", ended.stderr)

    def test_a_read_only_file_that_need_not_change_is_well(self):
        with Home() as home:
            home.run("install", "cursor")
            for path in (home.root / ".cursor").iterdir():
                path.chmod(0o444)
            ended = home.run("install", "cursor")
            self.assertEqual((ended.returncode, ended.stderr), (0, ""))
            ended = home.run("uninstall", "cursor")
            self.assertEqual(ended.returncode, 1)
            self.assertIn("mcp.json: is read-only", ended.stderr)

    def test_files_that_cannot_be_written(self):
        with Home() as home:
            path = home.write(".cursor/mcp.json", b"{}")
            path.chmod(0o444)
            home.write(".cursor/nothing/x", b"")
            (home.root / ".cursor/hooks.json").symlink_to("gone/hooks.json")
            ended = home.run("install", "cursor")
            self.assertEqual(ended.returncode, 1)
            self.assertIn("mcp.json: is read-only", ended.stderr)
            self.assertIn("hooks.json: is a link that leads nowhere", ended.stderr)
            self.assertEqual((path.read_bytes(), path.stat().st_mode & 0o777), (b"{}", 0o444))
            (home.root / ".claude/settings.json").mkdir(parents=True)
            os.mkfifo(home.root / ".claude.json")
            ended = home.run("install", "claude-code")
            self.assertIn("settings.json: is not a file", ended.stderr)
            self.assertIn(".claude.json: is not a file", ended.stderr)


class Files(unittest.TestCase):
    """Where files lie, what they are like, and what else is done."""

    def test_a_link_stays_and_its_file_is_changed(self):
        with Home() as home:
            real = home.write("dotfiles/claude/settings.json", b'{"a": 1}\n')
            real.chmod(0o640)
            link = home.root / ".claude/settings.json"
            link.parent.mkdir()
            link.symlink_to("../dotfiles/claude/settings.json")
            self.assertEqual(home.run("install", "claude-code").returncode, 0)
            self.assertTrue(link.is_symlink())
            self.assertEqual(len(our_handlers(parsed(real.read_bytes()))), 5)
            self.assertEqual(real.stat().st_mode & 0o777, 0o640)
            home.run("uninstall", "claude-code")
            self.assertTrue(link.is_symlink())
            self.assertEqual((real.read_bytes(), real.stat().st_mode & 0o777), (b'{"a": 1}\n', 0o640))

    def test_the_owner_stays(self):
        if os.geteuid() != 0:
            self.skipTest("needs root")
        with Home() as home:
            path = home.write(".cursor/mcp.json", b"{}")
            os.chown(path, 1234, 2345)
            home.run("install", "cursor")
            self.assertEqual((path.stat().st_uid, path.stat().st_gid), (1234, 2345))

    def test_harnesses_are_found_by_directory_and_by_program(self):
        with Home() as home:
            ended = home.run("install")
            self.assertEqual((ended.returncode, home.settings()), (1, {}))
            self.assertIn("is there", ended.stderr)
            (home.root / ".cursor").mkdir()
            program = home.write("bin/opencode", b"#!/bin/sh\n")
            program.chmod(0o755)
            home.environment["PATH"] += f":{home.root / 'bin'}"
            ended = home.run("install")
            told = {line.split("  ")[0] for line in ended.stdout.split("\n\n")[0].split("\n")}
            self.assertEqual((ended.returncode, told), (0, {"cursor", "opencode"}))
            self.assertEqual(home.run("install", "emacs").returncode, 2)

    def test_variables_say_where_things_are(self):
        with Home() as home:
            for name, value in [("CLAUDE_CONFIG_DIR", "c"), ("CODEX_HOME", "x"), ("XDG_CONFIG_HOME", "g"),
                                ("XDG_STATE_HOME", "s"), ("QUILLSTEAD_HOME", "q")]:
                home.environment[name] = str(home.root / "d" / value)
            self.assertEqual(home.run("install", *HARNESSES).returncode, 0)
            self.assertEqual(sorted(str(p.relative_to(home.root)) for p in home.root.rglob("*") if p.is_file()), [
                ".cursor/hooks.json", ".cursor/mcp.json", "d/c/.claude.json", "d/c/settings.json",
                "d/g/opencode/opencode.json", "d/g/opencode/plugins/quillstead.js", "d/q/rules.md",
                "d/x/config.toml", "d/x/hooks.json"])
            if IS_LINUX:
                self.assertEqual((home.root / "d/s/quillstead").stat().st_mode & 0o777, 0o700)

    def test_nothing_is_left_of_what_install_made(self):
        with Home() as home:
            self.assertEqual(home.run("install", *HARNESSES).returncode, 0)
            ended = home.run("uninstall", *HARNESSES)
            self.assertEqual(ended.returncode, 0)
            self.assertIn(str(home.root / ".quillstead"), ended.stdout)
            self.assertEqual(sorted(p.name for p in home.root.iterdir()), [".config", ".local", ".quillstead"])
            self.assertEqual(list((home.root / ".config").iterdir()), [])

    @unittest.skipUnless(IS_LINUX, "macOS has a place for logs")
    def test_the_log_that_somebody_named_is_used_for_all(self):
        with Home() as home:
            home.write(".claude/settings.json", b'{"env": {"QUILLSTEAD_HOOK_LOG": "/my/log"}}')
            home.run("install", "claude-code", "codex")
            self.assertIn(b"QUILLSTEAD_HOOK_LOG='/my/log' ", home.settings()[".codex/hooks.json"])
            home.run("uninstall", "claude-code", "codex")
            self.assertEqual(home.settings(), {".claude/settings.json": b'{"env": {"QUILLSTEAD_HOOK_LOG": "/my/log"}}'})
            home.environment["QUILLSTEAD_HOOK_LOG"] = "/your/log"
            home.write(".claude/settings.json", b"{}")
            home.run("install", "claude-code", "codex")
            self.assertIn(b"QUILLSTEAD_HOOK_LOG='/your/log' ", home.settings()[".codex/hooks.json"])
            self.assertNotIn(b"QUILLSTEAD_HOOK_LOG", home.settings()[".claude/settings.json"])
        with Home() as home:
            home.run("install", "claude-code")
            log = parsed(home.settings()[".claude/settings.json"])["env"]["QUILLSTEAD_HOOK_LOG"]
            self.assertEqual(log, str(home.root / ".local/state/quillstead/hook.log"))

    def test_programs_must_be_there(self):
        with Home() as home:
            alone = home.write("bin/quillstead", PROGRAM.read_bytes())
            alone.chmod(0o755)
            ended = home.run("install", "cursor", program=alone)
            self.assertEqual((ended.returncode, [*home.root.glob(".c*")]), (1, []))
            self.assertIn("quillstead-hook: is not there", ended.stderr)


class AtOnce(unittest.TestCase):
    """Killed, and more than one."""

    def prepared(self, home):
        for name, (_, file, keys) in FILES.items():
            if name != "opencode servers":
                home.write(file, json.dumps(foreign(keys), indent=2).encode())
        home.write(TOML[1], b'model = "x"\n')
        return home.settings()

    def test_killed_at_any_moment(self):
        chance = random.Random(7)
        with Home() as home:
            before = self.prepared(home)
            start = time.monotonic()
            home.run("install", *HARNESSES)
            longest = time.monotonic() - start
            after = home.settings()
            for i in range(KILLS):
                is_install = i % 2 == 1
                running = home.start("install" if is_install else "uninstall", *HARNESSES)
                time.sleep(chance.random() * longest)
                running.send_signal(signal.SIGKILL if i % 3 else signal.SIGTERM)
                running.wait()
                for file, content in home.settings().items():
                    if pathlib.Path(file).name.startswith(".quillstead-new-"):
                        continue
                    self.assertIn(content, [before.get(file), after.get(file)], file)
                home.run("uninstall" if is_install else "install", *HARNESSES)
                self.assertEqual(home.settings(), before if is_install else after)

    def test_two_at_once(self):
        for number in range(10):
            with Home("a home 'ü\"" if number % 2 else "home") as home:
                before = self.prepared(home)
                running = [home.start("install", *HARNESSES) for _ in range(4)]
                self.assertEqual([one.wait() for one in running], [0] * 4)
                for file, content in home.settings().items():
                    if file.endswith("hooks.json") or file.endswith("settings.json"):
                        harness = {".cl": "claude-code", ".co": "codex", ".cu": "cursor"}[file[:3]]
                        self.assertEqual(len(our_handlers(parsed(content))), expected_handlers(harness))
                running = [home.start("uninstall", *HARNESSES) for _ in range(4)]
                self.assertEqual([one.wait() for one in running], [0] * 4)
                self.assertEqual(home.settings(), before)


class Commands(unittest.TestCase):
    """Every command that is written, run as its harness runs it, from a home with an awkward name."""

    def setUp(self):
        self.home = Home("a b 'ü\" $x")
        self.addCleanup(self.home.directory.cleanup)
        self.bin = self.home.root / "bin `1`"
        self.bin.mkdir()
        for name in ["quillstead", "quillstead-hook", "quillstead-mcp"]:
            shutil.copy2(PROGRAM.parent / name, self.bin / name)
        ended = self.home.run("install", *HARNESSES, program=self.bin / "quillstead")
        self.assertEqual((ended.returncode, ended.stderr), (0, ""))
        self.home.write(".quillstead/rules.md", b"- Drink tea.\n")
        self.home.write(".quillstead/memory/tea.md", b"# The tea\nIs in the blue tin.\n")

    def answer(self, command, payload, environment=None):
        ended = subprocess.run(command, input=json.dumps(payload).encode(), capture_output=True, timeout=30,
                               env={**self.home.environment, **(environment or {})}, cwd=self.home.root, check=False)
        self.assertEqual((ended.returncode, ended.stderr), (0, b""), command)
        return json.loads(ended.stdout)

    def payload(self, event, **more):
        return {"session_id": "s", "cwd": str(self.home.root), "hook_event_name": event, **more}

    def test_claude_code(self):
        settings = json.loads(self.home.settings()[".claude/settings.json"])
        self.assertEqual(len(our_handlers(settings)), 5)
        for event, handler in our_handlers(settings):
            payload = self.payload(event, prompt="tea?")
            if event == "PreToolUse":
                payload = self.payload(event, agent_id="a", tool_name="mcp__quillstead__grab", tool_input={"q": 1})
            command = [handler["command"], *handler["args"]]
            answer = self.answer(command, payload, settings.get("env"))["hookSpecificOutput"]
            self.assertEqual(answer["hookEventName"], event)
            self.assertIn("updatedInput" if event == "PreToolUse" else "additionalContext", answer)
            if event == "UserPromptSubmit":  # from Cursor, which has an entry of its own
                of_cursor = subprocess.run(command, input=json.dumps({**payload, "cursor_version": "3"}).encode(), check=True,
                                           env=self.home.environment, capture_output=True)
                self.assertNotIn(b"tea", of_cursor.stdout)
        if IS_LINUX:
            log = pathlib.Path(settings["env"]["QUILLSTEAD_HOOK_LOG"])
            self.assertGreaterEqual(len(log.read_text().splitlines()), 4)

    def test_codex(self):
        for event, handler in our_handlers(json.loads(self.home.settings()[".codex/hooks.json"])):
            payload = self.payload(event, prompt="tea?")
            if event == "PreToolUse":
                payload = self.payload(event, agent_id="a", tool_name="mcp__quillstead__grab", tool_input={"q": 1})
            answer = self.answer(["sh", "-lc", handler["command"]], payload)["hookSpecificOutput"]
            self.assertEqual(answer.get("permissionDecision"), "allow" if event == "PreToolUse" else None)
        if IS_LINUX:
            self.assertTrue((self.home.root / ".local/state/quillstead/hook.log").exists())

    def test_cursor(self):
        for event, handler in our_handlers(json.loads(self.home.settings()[".cursor/hooks.json"])):
            payload = {"conversation_id": "s", "hook_event_name": event, "cursor_version": "3", "session_id": "s", "prompt": "tea?",
                       "workspace_roots": [str(self.home.root)], "tool_name": "MCP:grab", "tool_input": {"q": 1}}
            answer = self.answer(["sh", "-c", handler["command"]], payload)
            self.assertIn("updated_input" if event == "preToolUse" else "additional_context", answer)

    @unittest.skipUnless(shutil.which("node"), "needs node")
    def test_opencode(self):
        plugin = self.home.root / PLUGIN[1]
        plugin.with_name("package.json").write_text('{"type": "module"}')
        script = ("const m = await import(process.argv[1]);"
                  "const hooks = await Object.values(m)[0]({client: {session: {get: async () => ({data: {id: 's'}})}},"
                  " directory: process.cwd()});"
                  "const output = {message: {}, parts: [{id: 'prt_1', sessionID: 's', messageID: 'm', type: 'text', text: 'tea?'}]};"
                  "await hooks['chat.message']({sessionID: 's'}, output);"
                  "const call = {args: {title: 'x'}};"
                  "const child = await Object.values(m)[0]({client: {session: {get: async () => ({data: {id: 'c', parentID: 's'}})}},"
                  " directory: process.cwd()});"
                  "await child['tool.execute.before']({tool: 'quillstead_grab', sessionID: 'c'}, call);"
                  "console.log(JSON.stringify([...output.parts.map((part) => part.text), call.args]));")
        from urllib.request import pathname2url
        ended = subprocess.run([shutil.which("node"), "--input-type=module", "-e", script, "file://" + pathname2url(str(plugin))],
                               capture_output=True, text=True, timeout=60, env=self.home.environment, cwd=self.home.root, check=False)
        self.assertEqual(ended.returncode, 0, ended.stderr)
        parts = json.loads(ended.stdout)
        self.assertEqual(len(parts), 3, ended.stdout)
        self.assertIn("Drink tea.", parts[1])
        self.assertEqual(parts[2], {"title": "x", "_quillstead_subagent": "c"})

    def test_servers(self):
        files = self.home.settings()
        commands = [json.loads(files[".claude.json"])["mcpServers"]["quillstead"]["command"],
                    json.loads(files[".cursor/mcp.json"])["mcpServers"]["quillstead"]["command"],
                    json.loads(files[".config/opencode/opencode.json"])["mcp"]["quillstead"]["command"][0],
                    json.loads(re.search(rb"command = (.*)", files[TOML[1]])[1])]
        request = {"jsonrpc": "2.0", "id": 1, "method": "initialize", "params": {
            "protocolVersion": "2024-11-05", "capabilities": {}, "clientInfo": {"name": "t", "version": "1"}}}
        for command in commands:
            self.assertEqual(command, str(self.bin / "quillstead-mcp"))
            ended = subprocess.run([command], input=json.dumps(request).encode() + b"\n", capture_output=True,
                                   env=self.home.environment, timeout=30, check=False)
            self.assertIn("result", json.loads(ended.stdout.split(b"\n")[0]))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]])
