"""A user with a made-up home who installs, asks, and uninstalls, here or in another root."""

import json
import os
import pathlib
import shutil
import subprocess
import tempfile

PROMPT = {"prompt": "What do I drink?", "cwd": "/", "session_id": "packages", "hook_event_name": "UserPromptSubmit"}
CARD = "# Tea, not coffee\nI drink tea. Never order coffee for me.\n"


class User:
    """`root`: the directory that the user's programs see as /."""

    def __init__(self, case, root="/"):
        self.root = pathlib.Path(root)
        homes = self.root / "var/tmp"
        homes.mkdir(parents=True, exist_ok=True)
        self.place = pathlib.Path(tempfile.mkdtemp(prefix="quillstead-user-", dir=homes))
        case.addCleanup(shutil.rmtree, self.place)
        self.home = pathlib.Path("/") / self.place.relative_to(self.root)
        self.environment = {"HOME": str(self.home), "LANG": "C.UTF-8", "PATH": "/usr/bin:/bin"}
        (self.place / ".claude").mkdir()
        self.case = case

    def run(self, *command, status=0, **options):
        """What the command printed; the test fails when it ends in another way."""
        ended = subprocess.run([str(word) for word in command], env=self.environment, text=True, timeout=300,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE, preexec_fn=self._enter, **options)
        self.case.assertEqual(ended.returncode, status, f"{command}\n{ended.stdout}{ended.stderr}")
        return ended.stdout if status == 0 else ended.stderr

    def _enter(self):
        if self.root != pathlib.Path("/"):
            os.chroot(self.root)
        os.chdir(self.home)

    def settings(self):
        """What is in the home but for memory, log, copies of settings, and what package managers keep."""
        kept = (".quillstead", ".local/state", ".cache", ".npm", "prefix", "pnpm")
        names = [str(path.relative_to(self.place)) for path in self.place.rglob("*")]
        return sorted(name for name in names if not name.startswith(kept) and name != ".local")

    def handlers(self):
        """Claude Code's entries of ours: the words of each command, and its slot."""
        hooks = json.loads((self.place / ".claude/settings.json").read_text())["hooks"]
        found = [handler for groups in hooks.values() for group in groups for handler in group["hooks"]]
        return {handler["args"][handler["args"].index("--slot") + 1]: [handler["command"], *handler["args"]]
                for handler in found}

    def server(self):
        return json.loads((self.place / ".claude.json").read_text())["mcpServers"]["quillstead"]["command"]

    def write_card(self):
        card = self.place / ".quillstead/memory/tea.md"
        card.write_text(CARD)
        card.chmod(0o600)

    def ask(self):
        """What Claude Code reads at a prompt."""
        return self.run(*self.handlers()["recall"], input=json.dumps(PROMPT))

    def doctor(self, quillstead):
        report = json.loads(self.run(quillstead, "doctor", "--json"))
        return {check["id"]: check for check in report["checks"]}

    def is_native(self, path):
        """Whether that is a program of the system, not a script."""
        inside = self.root / pathlib.Path(path).relative_to("/")
        return inside.read_bytes()[:4] in (b"\x7fELF", b"\xca\xfe\xba\xbe")


def lives_with(user, quillstead):
    """Installs, asks, and uninstalls, and looks at what each of them did."""
    case, before = user.case, user.settings()
    user.run(quillstead, "install")
    user.write_card()
    programs = {user.server(), *(command[0] for command in user.handlers().values())}
    case.assertEqual({pathlib.Path(program).name for program in programs}, {"quillstead-hook", "quillstead-mcp"})
    for program in programs:
        case.assertTrue(user.is_native(program), program)
    case.assertIn("Never order coffee", user.ask())
    for name, check in user.doctor(quillstead).items():
        case.assertIn(check["status"], ("ok", "skip"), f"{name}: {check}")
    user.run(quillstead, "uninstall")
    case.assertEqual(user.settings(), before)
