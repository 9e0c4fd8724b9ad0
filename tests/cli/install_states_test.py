#!/usr/bin/env python3
"""`quillstead install` and `uninstall`: each file of each harness in each state, with each action, and
none left out. QUILLSTEAD names the program."""

import itertools
import json
import os
import pathlib
import re
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import install_test
from install_test import FILES, HOOK, PLUGIN, SERVER, TOML, Home, foreign, layouts, our_handlers, parsed, patched

STATES = ["absent", "empty", "compact", "2", "4", "tab", "CRLF", "BOM", "no last newline", "comments",
          "trailing commas", "foreign entries", "30-digit numbers", "our old entry", "doubled",
          "moved binary", "symlink", "read-only", "malformed", "odd shape"]
ACTIONS = ["install", "twice", "uninstall", "dry run"]
NAMES = [*FILES, "codex servers", "opencode plugin"]
PLACES = {**{name: (harness, file) for name, (harness, file, _) in FILES.items()},
          "codex servers": TOML, "opencode plugin": PLUGIN}

# What cannot be: a file of one statement of its own, and a key that TOML allows once.
MEANINGLESS = {("opencode plugin", "doubled"): "a plugin is a whole file",
               ("opencode plugin", "malformed"): "what is not our plugin is another's",
               ("opencode plugin", "odd shape"): "likewise",
               ("codex servers", "doubled"): "a table that is there twice is no TOML: see malformed"}

LAYOUT_NAMES = {"absent": "absent", "empty": "empty '{}\\n'", "compact": "compact", "2": "two blanks",
                "4": "four blanks", "tab": "tab", "CRLF": "carriage returns", "BOM": "byte order mark",
                "no last newline": "no last line end", "comments": "comments and last commas",
                "trailing commas": "last commas", "foreign entries": "comments",
                "30-digit numbers": "long numbers", "symlink": "two blanks", "read-only": "two blanks"}

IN_TOML = {"absent": None, "empty": b"", "compact": b'a=1\nb={c=[1,2],d="x"}\n', "2": b"[a]\n  b = 1\n",
           "4": b"[a]\n    b = 1\n", "tab": b"[a]\n\tb = 1\n", "CRLF": b"a = 1\r\n[b]\r\nc = 2\r\n",
           "BOM": b"\xef\xbb\xbfa = 1\n", "no last newline": b"[a]\nb = 1",
           "comments": b"# top\na = 1 # [x]\n# [mcp_servers.quillstead]\n[b] # c\nd = [ # e\n 1, # f\n] # g\n# tail",
           "trailing commas": b"a = [1, 2, ]\nb = [\n  1,\n]\n",
           "foreign entries": b"[mcp_servers.other]\ncommand = 'x'\n[mcp_servers.other.env]\nA = 'b'\n",
           "30-digit numbers": b"a = 123456789012345678901234567890.5e-7\n",
           "symlink": b"a = 1\n", "read-only": b"a = 1\n", "malformed": b"a = 1\nb = = 2\n",
           "odd shape": b"mcp_servers = 1\n",
           "our old entry": b"a = 1\n[mcp_servers.quillstead] # mine\ncommand = '/old/quillstead-mcp'\nx = 2\n"}

IN_PLUGIN = {"absent": None, "empty": b"", "compact": b"export const A=async()=>({});\n",
             "2": b"export const A = async () => {\n  return {};\n};\n",
             "4": b"export const A = async () => {\n    return {};\n};\n",
             "tab": b"export const A = async () => {\n\treturn {};\n};\n",
             "CRLF": b"export const A = 1;\r\n", "BOM": b"\xef\xbb\xbfexport const A = 1;\n",
             "no last newline": b"export const A = 1;", "comments": b"// A\nexport /* B */ const A = 1; // C\n",
             "trailing commas": b"export const A = [1, 2,];\n", "foreign entries": b"export * from './other.js';\n",
             "30-digit numbers": b"export const A = 123456789012345678901234567890n;\n"}


def old_entry(name, times=1):
    """Settings with what an earlier version of ours wrote, so many times."""
    hook, server = "/old/quillstead-hook", "/old/quillstead-mcp"
    handlers = {"claude-code settings": {"type": "command", "command": hook, "args": ["--harness", "claude-code"]},
                "codex hooks": {"type": "command", "command": f"'{hook}' --harness codex --slot recall"},
                "cursor hooks": {"command": f"{hook} --harness cursor --slot recall"}}
    if name in handlers:
        event = "beforeSubmitPrompt" if name == "cursor hooks" else "UserPromptSubmit"
        entry = handlers[name] if name == "cursor hooks" else {"hooks": [handlers[name]]}
        value = {"version": 1, "hooks": {event: [entry] * times, "Stop": []}}
        return json.dumps(value, indent=2).encode()
    key = "mcp" if name.startswith("opencode") else "mcpServers"
    command = f'["{server}"]' if key == "mcp" else f'"{server}"'
    entries = [f'"quillstead": {{"command": {command}, "mine": 1}}'] * times
    return f'{{"{key}": {{"other": {{}}, {", ".join(entries)}}}}}'.encode()


def content_of(name, state):
    if name == "opencode plugin":
        return IN_PLUGIN.get(state)
    if name == "codex servers":
        return IN_TOML.get(state)
    keys = FILES[name][2]
    if state in LAYOUT_NAMES:
        content = dict(layouts(keys))[LAYOUT_NAMES[state]]
        return b"{}" if content is None and name == "opencode servers with comments" else content
    return {"our old entry": old_entry(name), "doubled": old_entry(name, 2), "malformed": b'{"a": 1\n "b": 2}',
            "odd shape": b'{"' + keys[0].encode() + b'": []}', "moved binary": None}[state]


def holds_ours(name, content):
    if content is None:
        return False
    return b"/quillstead-hook" in content if "hooks" in name or "settings" in name or "plugin" in name else \
        b"/quillstead-mcp" in content


class Stage:
    """A home with the file in its state."""

    def __init__(self, home, name, state):
        self.home, self.name, self.state = home, name, state
        self.harness, self.file = PLACES[name]
        self.path = home.root / self.file
        content = content_of(name, state)
        installed = state == "moved binary" or (name == "opencode plugin" and state in ("our old entry", "symlink", "read-only"))
        if installed:
            if name == "opencode servers with comments":
                home.write(self.file, b"{}")
            home.run("install", self.harness)
            content = self.path.read_bytes().replace(str(install_test.PROGRAM.parent).encode(), b"/moved")
            if state == "our old entry":
                content = content.replace(b"LONGEST_RUN = 5000", b"LONGEST_RUN = 4000")
        if content is not None:
            home.write(self.file, content)
        if state == "symlink":
            self.link()
        if state == "read-only":
            self.path.chmod(0o444)
        self.before = content

    def link(self):
        real = self.home.root / "dotfiles" / self.path.name
        real.parent.mkdir(exist_ok=True)
        self.path.rename(real)
        self.path.symlink_to(real)

    def bytes(self):
        return self.path.read_bytes() if self.path.exists() else None

    def run(self, *arguments):
        ended = self.home.run(*arguments, self.harness)
        told = re.search(rf"^{self.harness}  {re.escape(str(self.path))}  (.*)$", ended.stdout, re.M)
        return told[1] if told else None, ended


class EveryState(unittest.TestCase):
    seen = set()

    @classmethod
    def tearDownClass(cls):
        missing = set(itertools.product(NAMES, STATES, ACTIONS)) - cls.seen - {
            (name, state, action) for name, state in MEANINGLESS for action in ACTIONS}
        assert not missing, f"not tried: {sorted(missing)}"
        print(f"{len(cls.seen)} combinations", file=sys.stderr)

    def check(self, name, state):
        with self.subTest(file=name, state=state), Home() as home:
            stage = Stage(home, name, state)
            is_others_plugin = name == "opencode plugin" and stage.before is not None and not holds_ours(name, stage.before)
            if state in ("read-only", "malformed", "odd shape") or is_others_plugin:
                self.check_left_alone(stage, is_others_plugin)
            else:
                self.check_dry_run(stage)
                self.check_install(stage)
                self.check_twice(stage)
                self.check_uninstall(stage)
            if state == "symlink":
                self.assertTrue(stage.path.is_symlink() or stage.name == "opencode plugin")
            self.seen.update((name, state, action) for action in ACTIONS)

    def check_left_alone(self, stage, is_others_plugin):
        for arguments in [("install", "--dry-run"), ("install",), ("install",), ("uninstall",), ("uninstall", "--dry-run")]:
            word, ended = stage.run(*arguments)
            is_unchanged = arguments[0] == "uninstall" and (
                is_others_plugin or (stage.state == "read-only" and not holds_ours(stage.name, stage.before)))
            self.assertEqual(word, "unchanged" if is_unchanged else "left alone", arguments)
            self.assertEqual(ended.returncode, 0 if is_unchanged else 1, arguments)
            self.assertEqual(str(stage.path) in ended.stderr, not is_unchanged)
            self.assertEqual(stage.bytes(), stage.before)

    def check_dry_run(self, stage):
        untouched = stage.home.everything()
        word, ended = stage.run("install", "--dry-run")
        self.assertEqual((word, ended.returncode), (self.word_for(stage), 0))
        self.assertEqual(stage.home.everything(), untouched)
        diff = ended.stdout.split(f"{stage.path}  {word}\n", 1)[1]
        self.shown = re.split(rf"^{stage.harness}  ", diff, flags=re.M)[0]

    def word_for(self, stage):
        return "updated" if holds_ours(stage.name, stage.before) else "added"

    def check_install(self, stage):
        word, ended = stage.run("install")
        self.assertEqual((word, ended.returncode, ended.stderr), (self.word_for(stage), 0, ""))
        after = stage.bytes()
        self.assertEqual(patched(stage.before or b"", self.shown.encode()), after)
        if stage.path.suffix == ".js":
            self.assertIn(f'QUILLSTEAD_HOOK_BIN || "{HOOK}"'.encode(), after)
            self.assertIn(b"LONGEST_RUN = 5000", after)
        elif stage.path.suffix == ".toml":
            self.assertEqual(re.findall(rb'^command = "(.*quillstead-mcp)"', after, re.M), [SERVER.encode()])
        else:
            self.check_json(stage, parsed(after))

    def check_json(self, stage, value):
        if "hooks" in stage.name or "settings" in stage.name:
            handlers = our_handlers(value)
            self.assertEqual(len(handlers), install_test.expected_handlers(stage.harness))
            self.assertTrue(all(HOOK in handler["command"] for _, handler in handlers))
            return
        key = "mcp" if stage.harness == "opencode" else "mcpServers"
        command = value[key]["quillstead"]["command"]
        self.assertEqual(command, [SERVER] if key == "mcp" else SERVER)

    def check_twice(self, stage):
        after = stage.bytes()
        word, ended = stage.run("install")
        self.assertEqual((word, ended.returncode, stage.bytes()), ("unchanged", 0, after))

    def check_uninstall(self, stage):
        word, ended = stage.run("uninstall")
        self.assertEqual((word, ended.returncode, ended.stderr), ("removed", 0, ""))
        left = stage.bytes()
        if not holds_ours(stage.name, stage.before):
            self.assertEqual(left, stage.before)
            return
        self.assertFalse(holds_ours(stage.name, left))
        if stage.path.suffix in (".json", ".jsonc") and stage.state in ("our old entry", "doubled"):
            self.assertTrue({"other", "Stop", "version"} & set(re.findall(r'"(\w+)"', left.decode())))

    def test_every_file_in_every_state_with_every_action(self):
        for name, state in itertools.product(NAMES, STATES):
            if (name, state) not in MEANINGLESS:
                self.check(name, state)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]])
