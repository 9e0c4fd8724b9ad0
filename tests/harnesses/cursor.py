"""Cursor has no program that runs without a screen. Here the entries that `quillstead install` writes are
run as Cursor's documentation says, with payloads of the documented shape; the answers have to be of it too.
"""

import functools
import json
import shutil
import subprocess
import unittest

from facts import CARD, PROJECT_CARD, PROJECT_RULE, PROMPT, RULE, Trial
from stage import Stage

# What an answer may hold, by event. `additional_context` of a prompt is taken since the client of 2026-07.
ANSWERS = {
    "beforeSubmitPrompt": {"continue": bool, "user_message": str, "additional_context": str},
    "preToolUse": {"permission": str, "user_message": str, "agent_message": str, "updated_input": dict,
                   "additional_context": str}}
INLINE = 10_000  # characters of additional_context that are surely passed on whole


class Cursor(Stage):
    name = "cursor"

    def configure(self):
        self.write(".cursor/cli.json", "{}\n")

    def entries(self, event):
        hooks = json.loads((self.home / ".cursor/hooks.json").read_text())
        assert hooks["version"] == 1, hooks
        return hooks["hooks"][event]

    def payload(self, event, **more):
        return {"conversation_id": "c0ffee00-1111", "generation_id": "9e9e", "model": "stand-in",
                "model_id": "stand-in", "hook_event_name": event, "cursor_version": "3.20.17",
                "workspace_roots": [str(self.project)], "user_email": None, "transcript_path": None, **more}

    def answer(self, event, **more):
        """What the one entry for the event prints, read as Cursor would."""
        entry, = self.entries(event)
        environment = {**self.environment, "CURSOR_VERSION": "3.20.17",
                       "CURSOR_PROJECT_DIR": str(self.project), "CLAUDE_PROJECT_DIR": str(self.project)}
        ran = subprocess.run(["/bin/sh", "-c", entry["command"]], env=environment, cwd=self.home / ".cursor",
                             input=json.dumps(self.payload(event, **more)), capture_output=True, text=True,
                             timeout=60)
        assert ran.returncode == 0, ran
        answer = json.loads(ran.stdout)
        for key, value in answer.items():
            assert isinstance(value, ANSWERS[event][key]), answer
        return answer

    def prompt(self, text):
        return self.answer("beforeSubmitPrompt", prompt=text, attachments=[])

    def tool(self, name, tool_input, **more):
        """The documented payload names a conversation; a session only where `more` does."""
        return self.answer("preToolUse", tool_name=name, tool_input=tool_input, tool_use_id="t1",
                           cwd=str(self.project), **more)


class InCursor(unittest.TestCase):
    harness = Cursor
    binaries = None
    packages = None

    def setUp(self):
        self.notes = []

    @functools.cached_property
    def stage(self):
        trial = Trial(type(self))
        trial.__enter__()
        self.addCleanup(trial.__exit__)
        trial.set_up()
        return trial.stage

    def test_a_prompt_of_the_documented_shape_brings_rules_and_cards_of_both_stores_once(self):
        answer = self.stage.prompt(PROMPT)
        self.assertIs(answer["continue"], True)
        context = answer["additional_context"]
        counts = {text: context.count(text) for text in (RULE, CARD, PROJECT_RULE, PROJECT_CARD)}
        self.assertEqual(counts, {RULE: 1, CARD: 1, PROJECT_RULE: 1, PROJECT_CARD: 1})

    def test_a_prompt_goes_on_when_there_is_nothing_to_say(self):
        for store in (self.stage.home, self.stage.project):
            shutil.rmtree(store / ".quillstead")
        self.assertEqual(self.stage.prompt(" "), {"continue": True})

    def test_what_a_prompt_brings_is_passed_on_whole(self):
        rules = "".join(f"- Rule {number}: " + "word " * 8 + "\n" for number in range(40))
        cards = {f"tea{number}": f"# Tea {number}\n\n" + "tea and kettle " * 40 for number in range(40)}
        self.stage.write_personal(rules=rules, **cards)
        context = self.stage.prompt("tea and kettle")["additional_context"]
        self.assertGreater(len(context), INLINE // 2)
        self.assertLessEqual(len(context), INLINE)

    def test_a_call_of_a_memory_tool_is_stamped_with_the_session_and_nothing_is_decided(self):
        entry, = self.stage.entries("preToolUse")
        for tool, tool_input in (("memory_add", {"text": "tea"}), ("grab", {"title": "tea"})):
            self.assertIn(f"MCP:{tool}", entry["matcher"].split("|"))
            answer = self.stage.tool(f"MCP:{tool}", tool_input, session_id="s-1111")
            self.assertEqual(answer, {"updated_input": {**tool_input, "_quillstead_session": "s-1111"}})

    def test_a_call_without_a_session_goes_through_as_it_is(self):
        self.assertEqual(self.stage.tool("MCP:memory_add", {"text": "tea"}), {})

    def test_a_call_of_another_tool_goes_through(self):
        self.assertEqual(self.stage.tool("Shell", {"command": "ls"}), {})
