"""One trial: a made-up home, a project, and a harness that is set up as a user would do it."""

import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import time

import programs


class Ran:
    """How one run of a harness ended."""

    def __init__(self, status, output, seconds, requests):
        self.status = status
        self.output = output      # standard output, then standard error
        self.seconds = seconds
        self.requests = requests  # those of this run

    @property
    def conversation(self):
        """The requests of the conversation itself, without those for titles and the like."""
        return [request for request in self.requests if request.tools]


class Stage:
    """A home with the harness's own settings for the stand-in model, and nothing of ours yet."""

    name = ""             # what `quillstead install` calls the harness
    memory_tool = ""      # how the harness names the tool "memory_add"
    subagent_tool = ""

    def __init__(self, binaries, packages, model):
        self.binaries = pathlib.Path(binaries)
        self.packages = packages
        self.model = model
        # Codex takes no home below the temporary directory.
        base = pathlib.Path(os.environ.get("QUILLSTEAD_TRIALS") or "/var/tmp")
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="quillstead-trial-", dir=base))
        self.project = self.home / "project"
        self.project.mkdir()
        subprocess.run(["git", "init", "-q", str(self.project)], check=True)
        self.environment = {
            "HOME": str(self.home), "PATH": os.environ["PATH"], "LANG": "C.UTF-8", "SHELL": "/bin/sh",
            "XDG_CONFIG_HOME": str(self.home / ".config"), "XDG_CACHE_HOME": str(self.home / ".cache"),
            "XDG_STATE_HOME": str(self.home / ".local/state"),
            "XDG_DATA_HOME": str(self.home / ".local/share")}
        self.configure()

    def close(self):
        shutil.rmtree(self.home, ignore_errors=True)

    # --- What a user does

    def write(self, path, text):
        path = self.home / path
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return path

    def write_personal(self, rules="", **cards):
        self._write_store(self.home / ".quillstead", rules, cards)

    def write_project(self, rules="", **cards):
        self._write_store(self.project / ".quillstead", rules, cards)

    def _write_store(self, place, rules, cards):
        (place / "memory").mkdir(parents=True, exist_ok=True, mode=0o700)
        if rules:
            (place / "rules.md").write_text(rules)
        for name, text in cards.items():
            (place / "memory" / f"{name}.md").write_text(text)

    def quillstead(self, *arguments, check=True):
        ran = subprocess.run([str(self.binaries / "quillstead"), *arguments], env=self.environment,
                             cwd=self.project, capture_output=True, text=True, timeout=60)
        if check and ran.returncode != 0:
            raise AssertionError(f"quillstead {' '.join(arguments)}: {ran.stdout}{ran.stderr}")
        return ran

    def install(self):
        self.quillstead("install", self.name)

    def run(self, prompt, again=False, timeout=600):
        """One prompt; `again`: in the session of the last one."""
        before = len(self.model.requests)
        start = time.monotonic()
        ran = subprocess.run(self.command(prompt, again), env=self.environment, cwd=self.project,
                             capture_output=True, text=True, timeout=timeout, stdin=subprocess.DEVNULL)
        return Ran(ran.returncode, ran.stdout + ran.stderr, time.monotonic() - start,
                   self.model.requests[before:])

    def seconds_until_asked(self, prompt):
        """From the start of the program to its request of the conversation."""
        start = time.monotonic()
        return self.run(prompt).conversation[0].time - start

    def compact(self):
        """Has the harness compact its session. It does so by itself when its context is full."""
        self.run("FILL-UP please", again=True)

    def install_in_project(self):
        """The entries of ours once more, for this project alone."""
        for path, of_project in self.hook_entries().items():
            (self.project / of_project).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(self.home / path, self.project / of_project)

    # --- What came of it

    def log(self):
        path = self.home / ".local/state/quillstead/hook.log"
        return path.read_text().splitlines() if path.exists() else []

    def cards(self):
        """The texts of all personal cards."""
        return [path.read_text() for path in sorted((self.home / ".quillstead/memory").glob("*.md"))]

    # --- What a harness says of itself

    def configure(self):
        raise NotImplementedError

    def command(self, prompt, again):
        raise NotImplementedError

    def hook_entries(self):
        """The file that names the hook, below the home, and the like of it below a project."""
        raise NotImplementedError

    def want_to_be_asked(self):
        """Before `memory_add` runs."""
        raise NotImplementedError

    @property
    def program(self):
        return programs.native(self.packages, self.name)

    @property
    def url(self):
        return f"http://127.0.0.1:{self.model.port}"


class ClaudeCode(Stage):
    name = "claude-code"
    memory_tool = "mcp__quillstead__memory_add"
    subagent_tool = "Agent"

    def configure(self):
        self.write(".claude/settings.json", json.dumps(
            {"permissions": {"allow": ["mcp__quillstead", "Agent"]}}, indent=2) + "\n")
        self.environment.update(
            ANTHROPIC_BASE_URL=self.url, ANTHROPIC_API_KEY="stand-in", DISABLE_TELEMETRY="1",
            DISABLE_AUTOUPDATER="1", CLAUDE_CODE_DISABLE_NONESSENTIAL_TRAFFIC="1")

    def command(self, prompt, again):
        return [self.program, "-p", prompt] + (["--continue"] if again else [])

    def compact(self):
        self.run("/compact", again=True)

    def hook_entries(self):
        return {".claude/settings.json": ".claude/settings.json"}

    def want_to_be_asked(self):
        settings = self.home / ".claude/settings.json"
        settings.write_text(settings.read_text().replace('"mcp__quillstead",', ""))

    def calls_memory_add(self, text):
        """Its tools of other servers have to be looked up before they can be called."""
        return [("ToolSearch", {"query": f"select:{self.memory_tool}"}), ("memory_add", {"text": text})]

    def calls_subagent(self, prompt):
        return [("Agent", {"description": "a helper", "prompt": prompt,
                           "subagent_type": "general-purpose"})]


class Codex(Stage):
    name = "codex"
    memory_tool = "mcp__quillstead__memory_add"
    subagent_tool = "spawn_agent"

    def configure(self):
        # Without its statistics it does not wait for the network at the end of each run.
        self.write(".codex/config.toml", f"""model = "stand-in"
model_provider = "local"
model_auto_compact_token_limit = 50000

[analytics]
enabled = false

[model_providers.local]
name = "local"
base_url = "{self.url}/v1"
wire_api = "responses"
env_key = "STAND_IN_KEY"

[projects."{self.project}"]
trust_level = "trusted"
""")
        self.environment["STAND_IN_KEY"] = "stand-in"

    def command(self, prompt, again):
        return [self.program, "exec", *(["resume", "--last"] if again else []),
                "--dangerously-bypass-hook-trust", "--skip-git-repo-check", prompt]

    def hook_entries(self):
        return {".codex/hooks.json": ".codex/hooks.json"}

    def want_to_be_asked(self):
        with open(self.home / ".codex/config.toml", "a", encoding="utf-8") as file:
            file.write('\n[mcp_servers.quillstead.tools.memory_add]\napproval_mode = "prompt"\n')

    def calls_memory_add(self, text):
        return [("memory_add", {"text": text})]

    def calls_subagent(self, prompt):
        return [("spawn_agent", {"message": prompt}),
                ("wait_agent", lambda spawned: {"targets": [json.loads(spawned)["agent_id"]]})]


class OpenCode(Stage):
    name = "opencode"
    memory_tool = "quillstead_memory_add"
    subagent_tool = "task"

    def configure(self):
        self.write(".config/opencode/opencode.json", json.dumps(
            {"model": "local/stand-in", "snapshot": False, "enabled_providers": ["local"], "provider": {"local": {
                "npm": "@ai-sdk/openai-compatible", "name": "local",
                "options": {"baseURL": self.url + "/v1", "apiKey": "stand-in"},
                "models": {"stand-in": {"name": "stand-in", "limit": {"context": 60000, "output": 1000}}}}}},
            indent=2) + "\n")
        self._say_that_packages_are_there(self.home / ".config/opencode")
        # The plugin sets no log: the user's environment names one, as `install` finds it elsewhere.
        self.environment.update(
            OPENCODE_DISABLE_AUTOUPDATE="1", OPENCODE_DISABLE_MODELS_FETCH="1",
            OPENCODE_MODELS_PATH=str(self.write("models.json", "{}\n")),  # it takes long over its own list
            QUILLSTEAD_HOOK_LOG=str(self.home / ".local/state/quillstead/hook.log"))
        (self.home / ".local/state/quillstead").mkdir(parents=True)

    def command(self, prompt, again):
        return [self.program, "run", *(["--continue"] if again else []), prompt]

    @staticmethod
    def _say_that_packages_are_there(directory):
        """OpenCode fetches one for plugins in TypeScript, and waits for a minute when it cannot."""
        needs = {"dependencies": {"@opencode-ai/plugin": "*"}}
        (directory / "node_modules").mkdir(parents=True)
        (directory / "package.json").write_text(json.dumps(needs))
        (directory / "package-lock.json").write_text(json.dumps({"packages": {"": needs}}))

    def install_in_project(self):
        super().install_in_project()
        self._say_that_packages_are_there(self.project / ".opencode")

    def hook_entries(self):
        return {".config/opencode/plugins/quillstead.js": ".opencode/plugins/quillstead.js"}

    def want_to_be_asked(self):
        path = self.home / ".config/opencode/opencode.json"
        path.write_text(json.dumps({**json.loads(path.read_text()),
                                    "permission": {self.memory_tool: "ask"}}))

    def calls_memory_add(self, text):
        return [("memory_add", {"text": text})]

    def calls_subagent(self, prompt):
        return [("task", {"description": "a helper", "prompt": prompt, "subagent_type": "general"})]

