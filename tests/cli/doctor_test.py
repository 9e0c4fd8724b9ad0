#!/usr/bin/env python3
"""`quillstead doctor` on set-ups that are broken in one way each: the check that names it, and what it
says. QUILLSTEAD names the program, which has the others beside it."""

import json
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

BUILT = pathlib.Path(os.environ["QUILLSTEAD"]).parent
PROGRAMS = ["quillstead", "quillstead-hook", "quillstead-mcp"]
HARNESSES = list(json.loads((pathlib.Path(__file__).parent / "../helpers/harnesses.json").read_text()))

CODEX = """#!/usr/bin/env python3
import json, os, sys
for line in sys.stdin:
    request = json.loads(line)
    if request.get("method") == "hooks/list":
        settings = json.load(open(os.path.expanduser("~/.codex/hooks.json")))
        hooks = [{"command": handler["command"], "enabled": %(enabled)s, "trustStatus": "%(trust)s"}
                 for groups in settings["hooks"].values() for group in groups for handler in group["hooks"]]
        assert request["params"]["cwds"] == [os.getcwd()]
        print(json.dumps({"method": "warning"}))
        print(json.dumps({"id": request["id"], "result": {"data": [{"hooks": hooks}]}}), flush=True)
"""


class DoctorTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.kept = tempfile.TemporaryDirectory()
        for program in PROGRAMS:
            shutil.copy(BUILT / program, cls.kept.name)

    @classmethod
    def tearDownClass(cls):
        cls.kept.cleanup()

    def setUp(self):
        stage = tempfile.TemporaryDirectory()
        self.addCleanup(stage.cleanup)
        self.home = pathlib.Path(stage.name).resolve()
        self.bin = self.home / "bin"
        self.work = self.home / "work"
        for directory in (self.bin, self.work / ".git", self.home / ".claude", self.home / ".codex",
                          self.home / ".cursor", self.home / ".config/opencode"):
            directory.mkdir(parents=True)
        for program in PROGRAMS:
            os.link(f"{self.kept.name}/{program}", self.bin / program)
        self.environment = {"HOME": str(self.home), "PATH": f"{self.home}/path:/usr/bin:/bin", "SHELL": "/bin/sh"}

    def quillstead(self, *arguments):
        return subprocess.run([self.bin / "quillstead", *arguments], env=self.environment, cwd=self.work,
                              capture_output=True, text=True, timeout=60)

    def install(self):
        run = self.quillstead("install", *HARNESSES)
        self.assertEqual(run.returncode, 0, run.stderr)
        (self.home / ".quillstead/rules.md").write_text("- Answer briefly.\n")
        (self.home / ".quillstead/memory/tea.md").write_text("# Tea\nNever coffee.\n")

    def doctor(self, *harnesses):
        run = self.quillstead("doctor", "--json", *harnesses)
        report = json.loads(run.stdout)
        checks = {check["id"]: check for check in report["checks"]}
        self.assertEqual(len(checks), len(report["checks"]))
        for check in checks.values():
            self.assertIn(check["status"], ("ok", "warn", "fail", "skip"))
            if check["status"] in ("warn", "fail"):
                self.assertNotEqual(check["fix"] + check["summary"], check["summary"], check)
        self.assertEqual(report["ok"], all(check["status"] != "fail" for check in checks.values()))
        self.assertEqual(run.returncode, 0 if report["ok"] else 1)
        return checks

    def assert_check(self, checks, name, status, *words):
        check = checks[name]
        self.assertEqual(check["status"], status, check)
        for word in words:
            self.assertIn(word, check["summary"] + "\n" + check["fix"])

    def write_program(self, name, text):
        path = self.bin / name
        path.unlink(missing_ok=True)
        path.write_text(text)
        path.chmod(0o755)
        return path

    def test_finds_nothing_wrong_after_install(self):
        self.install()
        checks = self.doctor()
        expected = {f"{harness}.{what}" for harness in HARNESSES for what in ("hooks", "server", "run", "double")}
        expected |= {"codex.trust", "server.start", "store.personal", "store.project", "log.file", "log.recent"}
        self.assertEqual(set(checks), expected)
        for name, check in checks.items():
            skipped = name in ("codex.trust", "store.project", "log.recent")
            self.assertEqual(check["status"], "skip" if skipped else "ok", check)
        self.assert_check(checks, "claude-code.run", "ok", "5 commands answered", " ms")
        self.assert_check(checks, "store.personal", "ok", "1 card of")
        self.assertEqual(checks["server.start"]["summary"].split(":")[0], str(self.bin / "quillstead-mcp"))

    def test_tells_people_the_same_on_one_screen(self):
        self.install()
        run = self.quillstead("doctor")
        self.assertEqual(run.returncode, 0)
        self.assertLessEqual(len(run.stdout.splitlines()), 24)
        self.assertIn("ok    cursor.hooks", run.stdout)
        self.assertNotIn("\x1b", run.stdout)
        (self.bin / "quillstead-mcp").unlink()
        run = self.quillstead("doctor", "cursor")
        self.assertEqual(run.returncode, 1)
        self.assertRegex(run.stdout, r"FAIL  server\.start .*cannot be started.*\n +→ ")

    def on_terminal(self, **variables):
        """What it shows on a terminal."""
        terminal, end = pty.openpty()
        self.addCleanup(os.close, terminal)
        subprocess.run([self.bin / "quillstead", "doctor", "cursor"], env={**self.environment, **variables}, cwd=self.work,
                       stdout=end, timeout=60)
        os.close(end)
        shown = b""
        try:
            while piece := os.read(terminal, 65536):
                shown += piece
        except OSError:  # nobody writes any more
            pass
        return shown.decode()

    def test_is_coloured_on_a_terminal_alone(self):
        self.install()
        self.assertIn("\x1b[32mok  \x1b[0m", self.on_terminal(TERM="xterm"))
        for variables in ({"TERM": "xterm", "NO_COLOR": "1"}, {"TERM": "dumb"}, {}):
            shown = self.on_terminal(**variables)
            self.assertIn("ok    cursor.hooks", shown)
            self.assertNotIn("\x1b", shown)
        self.environment["TERM"] = "xterm"
        self.assertNotIn("\x1b", self.quillstead("doctor", "cursor").stdout)

    def test_names_only_the_harnesses_that_are_asked_for_or_there(self):
        self.install()
        names = {name.split(".")[0] for name in self.doctor("cursor")}
        self.assertEqual(names, {"cursor", "server", "store", "log"})
        shutil.rmtree(self.home / ".codex")
        self.assertNotIn("codex.hooks", self.doctor())
        self.assertEqual(self.quillstead("doctor", "emacs").returncode, 2)

    def test_moved_hook(self):
        self.install()
        self.bin = self.bin.rename(self.home / "elsewhere")
        checks = self.doctor()
        for harness in HARNESSES:
            self.assert_check(checks, f"{harness}.hooks", "warn", "not up to date", f"quillstead install {harness}")
            self.assert_check(checks, f"{harness}.run", "fail", "cannot be started", "install")

    def test_hook_that_is_not_executable(self):
        self.install()
        hook = self.write_program("quillstead-hook", "")
        hook.chmod(0o644)
        checks = self.doctor()
        for harness in HARNESSES:
            self.assert_check(checks, f"{harness}.run", "fail", "cannot be started: Permission denied")

    def test_hook_of_another_version(self):
        self.install()
        for said, told in [("quillstead-hook 0.9.0", "version 0.9.0"), ('{"continue":true}', "another version")]:
            self.write_program("quillstead-hook", f"#!/bin/sh\n[ \"$1\" = --version ] && echo '{said}' && exit\n"
                                                  f"exec '{self.kept.name}/quillstead-hook' \"$@\"\n")
            self.environment["QUILLSTEAD_MCP_BIN"] = str(self.bin / "quillstead-mcp")
            self.assert_check(self.doctor("codex"), "codex.run", "warn", told)

    def test_missing_hanging_and_babbling_servers(self):
        self.install()
        for text, words in [("#!/bin/sh\necho Welcome; exec cat >/dev/null\n", "something other than MCP: Welcome"),
                            ("#!/bin/sh\nexit 3\n", "ends with status 3"),
                            ("#!/bin/sh\necho boom >&2; exit 3\n", "saying: boom"),
                            ("#!/bin/sh\ncat >/dev/null\n", "says nothing"),
                            (None, "cannot be started"),
                            ("#!/bin/sh\nsleep 60\n", "hangs")]:
            with self.subTest(words=words):
                if text is None:
                    (self.bin / "quillstead-mcp").unlink()
                else:
                    self.write_program("quillstead-mcp", text)
                begin = time.monotonic()
                checks = self.doctor("claude-code", "cursor")
                self.assertLess(time.monotonic() - begin, 25)
                self.assert_check(checks, "server.start", "fail", words, "quillstead-mcp")
                for harness in ("claude-code", "cursor"):
                    self.assert_check(checks, f"{harness}.run", "fail", "server")

    def test_missing_entries(self):
        checks = self.doctor()
        for harness in HARNESSES:
            self.assert_check(checks, f"{harness}.hooks", "fail", "of ours", f"quillstead install {harness}")
            self.assert_check(checks, f"{harness}.server", "warn", f"quillstead install {harness}")
            self.assert_check(checks, f"{harness}.run", "skip")
        self.assert_check(checks, "store.personal", "warn", "quillstead init")

    def test_entries_that_lack_something(self):
        self.install()
        for path in (self.home / ".claude/settings.json", self.home / ".codex/hooks.json", self.home / ".cursor/hooks.json"):
            settings = json.loads(path.read_text())
            settings["hooks"].pop("PreToolUse", None)
            settings["hooks"].pop("preToolUse", None)
            path.write_text(json.dumps(settings))
        checks = self.doctor()
        for harness in HARNESSES[:3]:
            self.assert_check(checks, f"{harness}.hooks", "fail", "before a tool call", f"quillstead install {harness}")

    def test_old_entries(self):
        self.install()
        settings = self.home / ".cursor/hooks.json"
        settings.write_text(settings.read_text().replace("--harness cursor --slot", "--harness=cursor --slot"))
        self.assert_check(self.doctor("cursor"), "cursor.hooks", "warn", "not up to date")

    def test_settings_that_do_not_parse(self):
        self.install()
        (self.home / ".codex/hooks.json").write_text('{\n  "hooks": {,}\n}\n')
        self.assert_check(self.doctor("codex"), "codex.hooks", "fail", "hooks.json:2:", "correct the file")

    def test_an_entry_by_way_of_another_program(self):
        (self.home / ".cursor/hooks.json").write_text(json.dumps({"version": 1, "hooks": {"beforeSubmitPrompt": [
            {"command": f"timeout 3 {self.bin}/quillstead-hook --harness cursor"}]}}))
        self.assert_check(self.doctor("cursor"), "cursor.hooks", "fail", "through another program")

    def test_another_server_of_our_name(self):
        self.install()
        cursor, codex = self.home / ".cursor/mcp.json", self.home / ".codex/config.toml"
        cursor.write_text('{"mcpServers": {"quillstead": {"command": "env", "args": ["A=1", "quillstead-mcp"]}}}')
        codex.write_text('[mcp_servers.quillstead]\nurl = "http://127.0.0.1:1"\n')
        checks = self.doctor("cursor", "codex")
        for harness in ("cursor", "codex"):
            self.assert_check(checks, f"{harness}.server", "warn", "another server in the place of ours", "remove it")
        cursor.unlink()
        self.assert_check(self.doctor("cursor"), "cursor.server", "warn", "has no server of ours")

    def test_a_server_that_is_switched_off(self):
        self.install()
        opencode, codex = self.home / ".config/opencode/opencode.json", self.home / ".codex/config.toml"
        opencode.write_text(opencode.read_text().replace('"enabled": true', '"enabled": false'))
        codex.write_text(codex.read_text() + "enabled = false\n")
        checks = self.doctor("opencode", "codex")
        for harness, path in [("opencode", opencode), ("codex", codex)]:
            self.assert_check(checks, f"{harness}.server", "warn", f"{path} switches the server off", "set enabled to true")
        codex.write_text(codex.read_text().replace("enabled = false", "enabled = true"))
        opencode.write_text(opencode.read_text().replace('"enabled": false', '"environment": {}'))
        checks = self.doctor("opencode", "codex")
        for harness in ("opencode", "codex"):
            self.assert_check(checks, f"{harness}.server", "ok")

    def test_hooks_that_claude_code_does_not_run(self):
        self.install()
        (self.work / ".claude").mkdir()
        for path in (self.home / ".claude/settings.json", self.work / ".claude/settings.local.json"):
            before = path.read_text() if path.exists() else "{}"
            for value, status in (("false", "ok"), ("true", "fail")):
                path.write_text(json.dumps({**json.loads(before), "disableAllHooks": json.loads(value)}))
                self.assertEqual(self.doctor("claude-code")["claude-code.hooks"]["status"], status)
            self.assert_check(self.doctor("claude-code"), "claude-code.hooks", "fail",
                              f"{path} switches all hooks off", "disableAllHooks")
            path.write_text(before)

    def test_entries_at_two_levels(self):
        self.install()
        for user, project in [(".codex/hooks.json", ".codex/hooks.json"), (".cursor/hooks.json", ".cursor/hooks.json"),
                              (".config/opencode/plugins/quillstead.js", ".opencode/plugins/quillstead.js"),
                              (".claude/settings.json", ".claude/settings.json")]:
            (self.work / project).parent.mkdir(parents=True)
            shutil.copy(self.home / user, self.work / project)
        checks = self.doctor()
        for harness in ("codex", "cursor", "opencode"):
            self.assert_check(checks, f"{harness}.double", "warn", str(self.work), "remove our entries")
        self.assert_check(checks, "claude-code.double", "ok")  # which runs what is the same once
        project = self.work / ".claude/settings.json"
        project.write_text(project.read_text().replace(str(self.bin), "/elsewhere"))
        self.assert_check(self.doctor("claude-code"), "claude-code.double", "warn", str(project))

    def test_an_entry_that_is_there_twice(self):
        self.install()
        path = self.home / ".cursor/hooks.json"
        settings = json.loads(path.read_text())
        settings["hooks"]["beforeSubmitPrompt"] *= 2
        path.write_text(json.dumps(settings))
        checks = self.doctor("cursor")
        self.assert_check(checks, "cursor.double", "warn", "twice", "quillstead install cursor")

    def test_codex_that_does_not_trust(self):
        self.install()
        (self.home / "path").mkdir()
        codex = self.home / "path/codex"
        for trust, enabled, status, word in [("trusted", True, "ok", "trusts the 2"), ("managed", True, "ok", "trusts"),
                                             ("untrusted", True, "fail", "/hooks"), ("modified", True, "fail", "/hooks"),
                                             ("trusted", False, "fail", "switched off")]:
            with self.subTest(trust=trust, enabled=enabled):
                codex.write_text(CODEX % {"trust": trust, "enabled": enabled})
                codex.chmod(0o755)
                self.assert_check(self.doctor("codex"), "codex.trust", status, word)
        codex.write_text("#!/bin/sh\nexit 1\n")
        self.assert_check(self.doctor("codex"), "codex.trust", "skip", "does not say")

    def test_a_log_that_cannot_be_written(self):
        self.install()
        self.environment["QUILLSTEAD_HOOK_LOG"] = str(self.home)
        self.assert_check(self.doctor("cursor"), "log.file", "warn", "is no file")
        self.environment["QUILLSTEAD_HOOK_LOG"] = str(self.home / "no/such/directory/log")
        self.assert_check(self.doctor("cursor"), "log.file", "warn", "cannot be created")
        self.environment["QUILLSTEAD_HOOK_LOG"] = ""
        self.assert_check(self.doctor("cursor"), "log.file", "skip", "switched off")
        if os.geteuid() != 0:
            log = self.home / "log"
            log.touch(0o400)
            self.environment["QUILLSTEAD_HOOK_LOG"] = str(log)
            self.assert_check(self.doctor("cursor"), "log.file", "warn", "cannot be written")

    def test_what_the_log_says_of_its_last_lines(self):
        self.install()
        log = self.home / "log"
        self.environment["QUILLSTEAD_HOOK_LOG"] = str(log)
        line = "2026-11-16T03:38:33.123+00:00 5ms {} | parse 5 residual 0\n"
        late, well = line.format("rules=MISS:timeout"), line.format("rules=1 cards=2")
        for text, status, words in [
                (well * 3, "ok", "the last 3 prompts"), (late * 3 + well, "warn", "3 of the last 4 prompts timed out"),
                (late * 300 + well * 200, "ok", "the last 200 prompts"), ("foreign\n" * 3, "skip", "no prompts"),
                (well + line.format("rules=MISS:no-envelope cards=MISS:declined"), "warn", "1 of the last 2 prompts got no"),
                (well + line.format("rules=MISS:over-budget"), "warn", "left out for the budget"),
                (well * 5000 + line.format("rules=1 cards=2 trimmed=1"), "warn", "1 of the last 200 prompts had cards cut")]:
            with self.subTest(words=words):
                log.write_text(text)
                self.assert_check(self.doctor("cursor"), "log.recent", status, words)
        self.assertEqual(log.read_text(), text)  # looking leaves no line

    def test_rules_that_do_not_fit(self):
        self.install()
        (self.home / ".quillstead/rules.md").write_text("- A rule of some length.\n" * 360)
        check = self.doctor()["store.personal"]
        self.assertEqual(check["status"], "warn")
        self.assertIn("cursor takes 8,000", check["summary"])
        self.assertNotIn("codex", check["summary"])

    def test_cards_that_are_left_out_and_open_modes(self):
        self.install()
        store = self.home / ".quillstead"
        (store / "memory/zero.md").write_bytes(b"a\0b")
        (store / "memory/big.md").write_text("x" * 1_100_000)
        self.assert_check(self.doctor("cursor"), "store.personal", "warn", "zero.md", "big.md", "1 card of")
        shutil.rmtree(store / "memory")
        (store / "memory").mkdir(mode=0o700)
        self.assert_check(self.doctor("cursor"), "store.personal", "ok")
        store.chmod(0o755)
        self.assert_check(self.doctor("cursor"), "store.personal", "warn",
                          f"{store} is open to other users", f"chmod -R go= {store}")
        (store / "memory").chmod(0o711)
        for name in ("one.md", "two.md"):
            (store / "memory" / name).write_text("# Open\n")
            (store / "memory" / name).chmod(0o640)
        self.assert_check(self.doctor("cursor"), "store.personal", "warn",
                          f"{store} and 3 more are open to other users")
        store.chmod(0o700)  # now no other user can reach the files in it
        self.assert_check(self.doctor("cursor"), "store.personal", "ok")
        store.chmod(0o755)
        subprocess.run(["/bin/sh", "-c", f"chmod -R go= {store}"], check=True)
        self.assert_check(self.doctor("cursor"), "store.personal", "ok")

    def test_a_file_in_the_place_of_the_personal_store(self):
        self.install()
        shutil.rmtree(self.home / ".quillstead")
        (self.home / ".quillstead").write_text("")
        self.assert_check(self.doctor("cursor"), "store.personal", "warn", "is not a directory", "quillstead init")

    def test_what_the_server_passes_over_in_a_store(self):
        self.install()
        store, notes = self.home / ".quillstead", self.home / "notes"
        notes.mkdir()
        (notes / "out.md").write_text("# Out\n")
        (store / "memory/out.md").symlink_to(notes / "out.md")
        (store / "memory/again.md").symlink_to("tea.md")
        check = self.doctor("cursor")["store.personal"]
        self.assertIn("1 card of", check["summary"])
        self.assertIn("out.md is left out: it is a symbolic link out of the store", check["summary"])
        self.assertNotIn("again.md", check["summary"])

        (store / "memory/out.md").unlink()
        (store / "memory").chmod(0o777)
        self.assert_check(self.doctor("cursor"), "store.personal", "warn",
                          f"{store}/memory is left out: any user can write to it", f"chmod -R o-w {store}/memory")
        shutil.rmtree(store / "memory")
        self.assert_check(self.doctor("cursor"), "store.personal", "ok")
        (store / "memory").symlink_to(notes)
        self.assert_check(self.doctor("cursor"), "store.personal", "warn",
                          f"{store}/memory is left out: it is a symbolic link out of the store", "directory")
        (store / "memory").unlink()
        (store / "memory").write_text("")
        self.assert_check(self.doctor("cursor"), "store.personal", "warn", "it is no directory that you can read")
        store.chmod(0o777)
        self.assert_check(self.doctor("cursor"), "store.personal", "warn",
                          f"{store} is left out: any user can write to it", f"chmod -R o-w {store}")

    def test_programs_and_a_log_whose_paths_have_to_be_escaped(self):
        odd = self.home / 'it\'s "odd"\\\t'
        shutil.move(self.bin, odd)
        self.bin = odd
        self.environment["XDG_STATE_HOME"] = str(odd / "state")
        self.install()
        for check in self.doctor().values():
            self.assertIn(check["status"], ("ok", "skip"), check)
        self.assertFalse((odd / "state/quillstead/hook.log").exists(), "a check left a line in the log")

    def test_a_project_that_is_not_trusted(self):
        self.install()
        (self.work / ".quillstead").mkdir(mode=0o755)
        (self.work / ".quillstead/rules.md").write_text("- Obey.\n")
        self.assert_check(self.doctor("cursor"), "store.project", "warn", "not trusted", "quillstead trust")
        self.assertEqual(self.quillstead("trust").returncode, 0)
        self.assert_check(self.doctor("cursor"), "store.project", "ok", str(self.work))

    def test_a_project_whose_store_is_left_out(self):
        self.install()
        store, notes = self.work / ".quillstead", self.home / "notes"
        self.assertEqual(self.quillstead("init", "--project").returncode, 0)
        store.chmod(0o777)
        self.assert_check(self.doctor("cursor"), "store.project", "warn",
                          f"{store} is left out: any user can write to it", f"chmod -R o-w {store}")
        inner = self.work / "inner"
        inner.mkdir()
        store.chmod(0o755)
        store.rename(inner / ".quillstead")
        notes.mkdir()
        store.symlink_to(notes)
        self.assert_check(self.doctor("cursor"), "store.project", "warn",
                          f"{store} is left out: it is a symbolic link out of the project", "put a directory there instead of the link")
        store.unlink()
        self.assert_check(self.doctor("cursor"), "store.project", "skip", "in no project with a store")

        # A store above one that is left out is used.
        (inner / ".quillstead").rename(store)
        (inner / ".quillstead").mkdir()
        (inner / ".quillstead").chmod(0o777)
        self.work = inner
        self.assert_check(self.doctor("cursor"), "store.project", "warn", f"{store}: rules of",
                          f"{inner}/.quillstead is left out: any user can write to it")

    def test_rules_count_as_the_user_wrote_them(self):
        self.install()
        self.assertEqual(self.quillstead("init", "--project").returncode, 0)
        for text, size in [("- a\n", "4 bytes"), ("<!-- A note. -->\n\n", "0 bytes"), ("<!-- A note. -->- a", "3 bytes")]:
            for store, check in [(self.home / ".quillstead", "store.personal"), (self.work / ".quillstead", "store.project")]:
                (store / "rules.md").write_text(text)
                self.assert_check(self.doctor("cursor"), check, "ok", f"{store}: rules of {size},")
        (store / "rules.md").write_bytes(b"a\0b")
        self.assert_check(self.doctor("cursor"), "store.project", "warn", "rules of 0 bytes,", "rules.md is left out")

    def test_a_home_of_memory_for_one_program_only(self):
        self.install()
        claude, cursor = self.home / ".claude/settings.json", self.home / ".cursor/mcp.json"
        settings = json.loads(cursor.read_text())
        settings["mcpServers"]["quillstead"]["env"] = {"QUILLSTEAD_HOME": "/other"}
        cursor.write_text(json.dumps(settings))
        codex = self.home / ".codex/config.toml"
        codex.write_text(codex.read_text().replace('"QUILLSTEAD_HOME", ', ""))
        self.assert_check(self.doctor("cursor"), "cursor.server", "warn", "QUILLSTEAD_HOME", "/other", "nothing")
        self.environment["QUILLSTEAD_HOME"] = "/other"
        checks = self.doctor("cursor", "codex")
        self.assert_check(checks, "cursor.server", "ok")
        self.assert_check(checks, "codex.server", "warn", "QUILLSTEAD_HOME is /other for the hook and nothing for")
        del self.environment["QUILLSTEAD_HOME"]
        settings = json.loads(claude.read_text())
        settings["env"]["QUILLSTEAD_HOME"] = "/other"
        claude.write_text(json.dumps(settings))
        self.assert_check(self.doctor("claude-code"), "claude-code.server", "ok")
        own = json.loads((self.home / ".claude.json").read_text())
        own["mcpServers"]["quillstead"]["env"] = {"QUILLSTEAD_HOME": "/third"}
        (self.home / ".claude.json").write_text(json.dumps(own))
        self.assert_check(self.doctor("claude-code"), "claude-code.server", "warn", "/other", "/third")


    def test_a_codex_entry_whose_stamp_codex_drops(self):
        self.install()
        path = self.home / ".codex/hooks.json"
        path.write_text(path.read_text().replace(" --decision allow", ""))
        checks = self.doctor("codex")
        self.assert_check(checks, "codex.run", "fail", "drops the stamp", "--decision allow", "quillstead install codex")
        self.assert_check(checks, "codex.hooks", "warn", "not up to date")

    def test_a_server_of_another_version(self):
        self.install()
        self.write_program("quillstead-mcp", f"#!/bin/sh\n'{self.kept.name}/quillstead-mcp' | "
                                             "sed 's/\\(\"quillstead-mcp\",\"version\":\"\\)[^\"]*/\\10.9.0/'\n")
        checks = self.doctor("cursor")
        self.assert_check(checks, "server.start", "warn", "version 0.9.0", "together")
        self.assert_check(checks, "cursor.run", "ok")

    def test_a_mixture_of_versions(self):
        self.install()
        self.write_program("quillstead-hook", "#!/bin/sh\n[ \"$1\" = --version ] && echo 'quillstead-hook 0.8.0' && exit\n"
                                              f"exec '{self.kept.name}/quillstead-hook' \"$@\"\n")
        self.write_program("quillstead-mcp", f"#!/bin/sh\n'{self.kept.name}/quillstead-mcp' | "
                                             "sed 's/\\(\"quillstead-mcp\",\"version\":\"\\)[^\"]*/\\10.9.0/'\n")
        self.environment["QUILLSTEAD_MCP_BIN"] = str(self.bin / "quillstead-mcp")
        checks = self.doctor()
        own = self.quillstead("--version").stdout.split()[1]
        for harness in HARNESSES:
            self.assert_check(checks, f"{harness}.run", "warn", f"version 0.8.0, and this is {own}")
        self.assert_check(checks, "server.start", "warn", f"version 0.9.0, and this is {own}", "together")

    IN_CONFIG = """
[[hooks.UserPromptSubmit]]
[[hooks.UserPromptSubmit.hooks]]
type = "command"
command = "%(hook)s --harness codex"
[[hooks.PreToolUse]]
matcher = "mcp__quillstead__.*"
[[hooks.PreToolUse.hooks]]
type = "command"
command = "%(hook)s --harness codex --slot pretool --decision allow"
"""

    def test_codex_hooks_in_its_other_file(self):
        self.install()
        config, hooks = self.home / ".codex/config.toml", self.home / ".codex/hooks.json"
        with open(config, "a", encoding="utf-8") as file:
            file.write(self.IN_CONFIG % {"hook": self.bin / "quillstead-hook"})
        self.assert_check(self.doctor("codex"), "codex.double", "warn", str(config), "remove our entries")
        hooks.unlink()
        checks = self.doctor("codex")
        self.assert_check(checks, "codex.hooks", "warn", str(config), "remove them", "quillstead install codex")
        self.assert_check(checks, "codex.run", "ok", "2 commands answered")
        self.assert_check(checks, "codex.double", "ok")
        config.write_text(config.read_text().partition("[[hooks.PreToolUse]]")[0])
        self.assert_check(self.doctor("codex"), "codex.hooks", "fail", "no entry answers before a tool call")
        (self.work / ".codex").mkdir()
        shutil.copy(config, self.work / ".codex/config.toml")
        self.assert_check(self.doctor("codex"), "codex.double", "warn", str(self.work / ".codex/config.toml"))

    def test_an_entry_for_all_beside_one_for_a_slot(self):
        self.install()
        (self.work / ".codex").mkdir()
        (self.work / ".codex/hooks.json").write_text(json.dumps({"hooks": {"UserPromptSubmit": [{"hooks": [
            {"type": "command", "command": f"{self.bin}/quillstead-hook --harness codex --slot recall"}]}]}}))
        self.assert_check(self.doctor("codex"), "codex.double", "warn", str(self.work))

    def test_settings_that_are_read_only_and_up_to_date(self):
        self.install()
        for path in self.home.glob(".c*/*.json"):
            path.chmod(0o444)
        checks = self.doctor()
        for harness in HARNESSES:
            self.assert_check(checks, f"{harness}.hooks", "ok")
            self.assert_check(checks, f"{harness}.run", "ok")

    def test_the_whole_report_takes_twenty_seconds_at_most(self):
        self.install()
        (self.home / "path").mkdir()
        codex = self.home / "path/codex"
        codex.write_text("#!/bin/sh\nexec sleep 60\n")
        codex.chmod(0o755)
        # What does not end: nothing of ours; then the hook, the server and Codex; then the version too.
        for slow, server in [("sleep 3", ""), ("sleep 60", "sleep 60"), ("[ \"$1\" != --version ] || sleep 60", "sleep 60")]:
            with self.subTest(hook=slow):
                self.write_program("quillstead-hook", f"#!/bin/sh\n{slow}\nexec '{self.kept.name}/quillstead-hook' \"$@\"\n")
                self.write_program("quillstead-mcp", f"#!/bin/sh\n{server}\nexec '{self.kept.name}/quillstead-mcp'\n")
                begin = time.monotonic()
                checks = self.doctor()
                took = time.monotonic() - begin
                print(f"{took:.1f} s", file=sys.stderr)
                self.assertLess(took, 40)
                self.assertEqual(len(checks), 22)  # none is left out
                late = [check["summary"] for check in checks.values() if "no time was left" in check["summary"]]
                self.assertTrue(late or "version" in slow, "a limit was reached")

    def test_the_server_gets_three_seconds(self):
        self.install()
        self.write_program("quillstead-mcp", "#!/bin/sh\nsleep 60\n")
        summary = self.doctor("opencode")["server.start"]["summary"]
        milliseconds = int(re.search(r"no answer within (\d+) ms", summary)[1])
        self.assertGreaterEqual(milliseconds, 3000)
        self.assertLess(milliseconds, 20_000)

    # Each way to break a set-up: what does it, the check that names it, and the first words of what to do.
    def broken(self):
        hook, server = self.bin / "quillstead-hook", self.bin / "quillstead-mcp"
        claude, codex = self.home / ".claude/settings.json", self.home / ".codex/hooks.json"
        cursor, log = self.home / ".cursor/hooks.json", self.home / ".local/state/quillstead/hook.log"
        late = "2026-11-16T03:38:33.123+00:00 5ms rules=MISS:timeout | parse 5 residual 0\n"

        def replace(path, old, new):
            path.write_text(path.read_text().replace(old, new))

        def copy_to_project(path):
            (self.work / path.parent.name).mkdir()
            shutil.copy(path, self.work / path.parent.name)

        def untrusting_codex():
            (self.home / "path").mkdir()
            program = self.home / "path/codex"
            program.write_text(CODEX % {"trust": "untrusted", "enabled": True})
            program.chmod(0o755)

        return [
            ("the hook moved", lambda: hook.rename(self.bin / "x"), "codex.run", "FAIL", "cannot be started", "quillstead install codex"),
            ("not executable", lambda: self.write_program(hook.name, "").chmod(0o644), "cursor.run", "FAIL", "Permission denied", "quillstead install cursor"),
            ("wrong version", lambda: self.write_program(hook.name, "#!/bin/sh\n[ \"$1\" = --version ] && echo 'quillstead-hook 0.9.0' && exit\n"
                                                         f"QUILLSTEAD_MCP_BIN={server} exec '{self.kept.name}/quillstead-hook' \"$@\"\n"),
             "claude-code.run", "warn", "version 0.9.0", "quillstead install claude-code"),
            ("server missing", server.unlink, "server.start", "FAIL", "cannot be started", "put quillstead-mcp back"),
            ("server hanging", lambda: self.write_program(server.name, "#!/bin/sh\nsleep 60\n"), "server.start", "FAIL", "hangs", "put quillstead-mcp back"),
            ("server babbling", lambda: self.write_program(server.name, "#!/bin/sh\necho Hi; cat >/dev/null\n"), "server.start", "FAIL", "something other than MCP: Hi", "put quillstead-mcp back"),
            ("entries missing", lambda: claude.write_text("{}"), "claude-code.hooks", "FAIL", "no hooks of ours", "quillstead install claude-code"),
            ("entries old", lambda: replace(codex, "--slot pretool --decision", "--slot=pretool --decision"), "codex.hooks", "warn", "not up to date", "quillstead install codex"),
            ("doubled at two levels", lambda: copy_to_project(cursor), "cursor.double", "warn", "our entries too", "remove our entries"),
            ("Codex not trusting", untrusting_codex, "codex.trust", "FAIL", "not reviewed", "start codex once"),
            ("log not writable", lambda: log.mkdir(), "log.file", "warn", "is no file", "remove it"),
            ("prompts timing out", lambda: log.write_text(late * 9), "log.recent", "warn", "9 of the last 9 prompts timed out", "quillstead log"),
            ("rules too long", lambda: (self.home / ".quillstead/rules.md").write_text("- A rule of some length.\n" * 360),
             "store.personal", "warn", "cursor takes 8,000", "shorten rules.md"),
            ("project not trusted", lambda: (self.work / ".quillstead").mkdir(), "store.project", "warn", "not trusted", "look at what is in it"),
            ("QUILLSTEAD_HOME for one program", lambda: replace(self.home / ".cursor/mcp.json", '"args": []', '"args": [], "env": {"QUILLSTEAD_HOME": "/other"}'),
             "cursor.server", "warn", "QUILLSTEAD_HOME is nothing for the hook and /other", "set it to the same")]

    def test_each_broken_set_up_is_seen_in_one_screen_with_what_to_do(self):
        for number in range(len(self.broken())):
            self.doCleanups()
            self.setUp()
            self.install()
            name, break_it, check, mark, what, fix = self.broken()[number]
            with self.subTest(name):
                break_it()
                report = self.quillstead("doctor").stdout
                self.assertLessEqual(len(report.splitlines()), 40)
                seen = re.search(rf"^{mark}  {re.escape(check)} .*{re.escape(what)}.*\n +→ (.*)$", report, re.M)
                self.assertTrue(seen, report)
                self.assertIn(fix, seen[1])

    @unittest.skipUnless(hasattr(os, "geteuid") and os.geteuid() == 0, "root may write everything, and may be another")
    def test_a_log_that_belongs_to_somebody_else(self):
        self.install()
        log = self.home / "log"
        log.touch(0o644)
        self.environment["QUILLSTEAD_HOOK_LOG"] = str(log)
        for path in [self.home, *self.home.rglob("*")]:
            if path != log and not path.is_symlink():
                os.chown(path, 65534, 65534)
        run = subprocess.run([self.bin / "quillstead", "doctor", "--json", "cursor"], env=self.environment, cwd=self.work,
                             capture_output=True, text=True, timeout=60, user=65534, group=65534, extra_groups=[])
        checks = {check["id"]: check for check in json.loads(run.stdout)["checks"]}
        self.assert_check(checks, "log.file", "warn", "cannot be written", "another user")


if __name__ == "__main__":
    unittest.main()
