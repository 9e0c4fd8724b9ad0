"""What has to be true in the real harnesses, one test a fact. `run` makes one class for each harness."""

import re
import shutil
import statistics
import time
import unittest

from model import Model
from stage import ClaudeCode, Codex, OpenCode

RULE, CARD = "RULE-TEA", "CARD-KETTLE"
PROJECT_RULE, PROJECT_CARD = "RULE-TABS", "CARD-CANARY"
PROMPT = "where is the kettle, and the canary?"


class Facts(unittest.TestCase):
    """The facts that hold in every harness. `harness`, `binaries` and `packages` are set by `run`."""

    harness = None
    binaries = None
    packages = None

    def setUp(self):
        self.script = {}
        self.model = self.enterContext(Model(self.script))
        self.stage = self.enterContext(self.harness(self.binaries, self.packages, self.model))
        self.stage.write_personal(rules=f"- {RULE}: always drink tea.\n",
                                  kettle=f"# Kettle\n\n{CARD}: the kettle is on the third floor.\n")
        self.stage.write_project(rules=f"- {PROJECT_RULE}: indent with tabs.\n",
                                 canary=f"# Canary\n\n{PROJECT_CARD}: the canary takes ten minutes.\n")

    def enterContext(self, manager):  # unittest has it since Python 3.11
        value = manager.__enter__()
        self.addCleanup(manager.__exit__, None, None, None)
        return value

    def ready(self):
        """Set up as the README says, in a project that the user trusts."""
        self.stage.install()
        self.stage.quillstead("trust", str(self.stage.project))

    def run_well(self, prompt, **options):
        ran = self.stage.run(prompt, **options)
        self.assertEqual(ran.status, 0, ran.output)
        self.assertIn("Done.", ran.output)
        self.assertTrue(ran.conversation, "the model was never asked")
        return ran

    def assertSaid(self, ran, counts):
        """How often each text stands in the last request of the conversation."""
        request = ran.conversation[-1]
        self.assertEqual({text: request.count(text) for text in counts}, counts)

    # --- What a prompt brings

    def test_rules_and_cards_of_both_stores_reach_the_model_once(self):
        self.ready()
        self.assertSaid(self.run_well(PROMPT), {RULE: 1, CARD: 1, PROJECT_RULE: 1, PROJECT_CARD: 1})

    def test_each_entry_leaves_one_line_in_the_log(self):
        self.ready()
        self.run_well(PROMPT)
        slots = sorted(re.findall(r"slot=(\w+)", "\n".join(self.stage.log())))
        self.assertEqual(len(self.stage.log()), self.entries, self.stage.log())
        self.assertEqual(slots, self.slots)

    def test_nothing_of_an_untrusted_project_reaches_the_model(self):
        self.stage.install()
        ran = self.run_well(PROMPT)
        self.assertSaid(ran, {RULE: 1, CARD: 1, PROJECT_RULE: 0, PROJECT_CARD: 0})
        self.assertTrue(ran.conversation[-1].says("quillstead trust"))

    # --- Tools

    def test_the_memory_tools_are_offered(self):
        self.ready()
        ran = self.run_well(PROMPT)
        for tool in ("memory_add", "memory_get_relevant", "rules_get", "grab"):
            name = self.stage.memory_tool.replace("memory_add", tool)
            self.assertTrue(self.offers(ran.conversation[-1], name), name)

    def offers(self, request, name):
        return name in request.tools or name.replace("__", "", 2).replace("mcp", "mcp__", 1) in request.tools

    def added_card(self):
        added = [text for text in self.stage.cards() if "the milk is blue" in text]
        self.assertEqual(len(added), 1, self.stage.cards())
        return added[0]

    def test_the_agent_adds_a_card(self):
        self.script["NOTE-IT"] = self.stage.calls_memory_add("the milk is blue")
        self.ready_without_project()
        self.run_well("NOTE-IT please")
        self.assertNotIn("subagent:", self.added_card())

    def test_a_card_of_a_sub_agent_carries_its_stamp(self):
        self.script["SEND-HELP"] = self.stage.calls_subagent("NOTE-IT in memory")
        self.script["NOTE-IT"] = self.stage.calls_memory_add("the milk is blue")
        self.ready_without_project()
        self.run_well("SEND-HELP please")
        self.wait_until(lambda: any("milk" in text for text in self.stage.cards()))
        self.assertRegex(self.added_card(), r"(?m)^subagent: \S+")

    def ready_without_project(self):
        shutil.rmtree(self.stage.project / ".quillstead")
        self.stage.install()

    def wait_until(self, holds, seconds=20):
        end = time.monotonic() + seconds
        while not holds() and time.monotonic() < end:
            time.sleep(0.1)

    def test_the_rules_reach_a_sub_agent(self):
        self.script["SEND-HELP"] = self.stage.calls_subagent("LOOK-AROUND for the kettle")
        self.model.slow["SEND-HELP"] = 6  # so that it is not taken for a hook of the same prompt
        self.ready()
        ran = self.run_well("SEND-HELP please")
        self.wait_until(lambda: self.helpers_requests())
        self.assertTrue(self.helpers_requests(), "no sub-agent asked the model")
        self.assertEqual(self.helpers_requests()[-1].count(RULE), 1)
        return ran

    def helpers_requests(self):
        return [request for request in self.model.requests if request.tools and
                any(role == "user" and "LOOK-AROUND" in text for role, text in request.turns)
                and not any(role == "user" and "SEND-HELP" in text for role, text in request.turns)]

    # --- A session

    def test_a_session_brings_the_rules_once_and_no_card_twice(self):
        self.ready()
        self.run_well(PROMPT)
        for word in ("again", "and again", "once more", "and now"):
            last = self.run_next(f"{word}: {PROMPT}")
        self.assertSaid(last, {RULE: 1, CARD: 1, PROJECT_RULE: 1, PROJECT_CARD: 1})
        self.assertTrue(last.conversation[-1].says(f"and now: {PROMPT}"))

    def run_next(self, prompt):
        """The next prompt of the session, not within the time in which calls are one prompt."""
        time.sleep(5.2)
        return self.run_well(prompt, again=True)

    # --- What is broken

    def assertGoesThrough(self, within):
        """The prompt is answered, and not much later than it would be with nothing of ours."""
        bare = min(self.bare_run().seconds for _ in range(2))
        ran = self.run_well(PROMPT)
        self.assertTrue(ran.conversation[-1].says(PROMPT))
        print(f"    {self.harness.name}: {ran.seconds:.1f} s, {bare:.1f} s without the hook", flush=True)
        self.assertLess(ran.seconds, 2 * bare + within)
        return ran

    def bare_run(self):
        with self.harness(self.binaries, self.packages, self.model) as bare:
            ran = bare.run(PROMPT)
            self.assertEqual(ran.status, 0, ran.output)
            return ran

    def break_program(self, name, text):
        """Puts something else in the place of one of our programs, for this trial alone."""
        place = self.stage.home / "bin"
        shutil.copytree(self.binaries, place, ignore=lambda _, names: [
            other for other in names if other not in ("quillstead", "quillstead-hook", "quillstead-mcp")])
        self.stage.binaries = place
        self.ready()
        (place / name).unlink()
        if text is not None:
            (place / name).write_text(text)
            (place / name).chmod(0o755)

    def test_a_prompt_goes_through_when_the_server_is_missing(self):
        self.break_program("quillstead-mcp", None)
        self.assertSaid(self.assertGoesThrough(within=10), {RULE: 0, CARD: 0})

    def test_a_prompt_goes_through_when_the_server_crashes(self):
        self.break_program("quillstead-mcp", "#!/bin/sh\nkill -SEGV $$\n")
        self.assertSaid(self.assertGoesThrough(within=10), {RULE: 0, CARD: 0})

    def test_a_prompt_goes_through_when_the_server_hangs(self):
        self.break_program("quillstead-mcp", "#!/bin/sh\nexec sleep 60\n")
        self.assertSaid(self.assertGoesThrough(within=self.patience_with_servers), {RULE: 0, CARD: 0})

    patience_with_servers = 40  # the harness waits for its tools

    def test_a_prompt_goes_through_when_the_hook_is_missing(self):
        self.break_program("quillstead-hook", None)
        self.assertSaid(self.assertGoesThrough(within=10), {RULE: 0, CARD: 0})

    def test_a_prompt_goes_through_when_the_hook_hangs(self):
        self.break_program("quillstead-hook", "#!/bin/sh\nexec sleep 60\n")
        self.assertSaid(self.assertGoesThrough(within=20), {RULE: 0, CARD: 0})

    # --- What it costs

    def test_the_hook_adds_little_to_a_prompt(self):
        self.ready()
        self.run_well(PROMPT)
        differences = []
        with self.harness(self.binaries, self.packages, self.model) as bare:
            for _ in range(self.pairs):
                differences.append(self.until_asked(self.stage) - self.until_asked(bare))
        median = statistics.median(differences)
        print(f"    {self.harness.name}: the hook adds {1000 * median:.0f} ms to a prompt "
              f"(median of {self.pairs} pairs)", flush=True)
        self.assertLess(median, 2.5)  # more than the hook's own limit would be a fault

    pairs = 3

    def until_asked(self, stage):
        start = time.monotonic()
        ran = stage.run(PROMPT)
        return ran.conversation[0].time - start


class InClaudeCode(Facts):
    harness = ClaudeCode
    entries = 3
    slots = ["index", "recall", "rules"]

    def offers(self, request, name):
        return name in request.tools or request.says(name)  # listed by name, loaded by a search

    def test_permissions_still_hold(self):
        self.script["NOTE-IT"] = self.stage.calls_memory_add("the milk is blue")
        self.stage.write(".claude/settings.json", "{}\n")
        self.ready_without_project()
        self.run_well("NOTE-IT please")
        self.assertFalse([text for text in self.stage.cards() if "the milk is blue" in text])

    def test_the_notification_of_a_background_agent_brings_no_second_dose(self):
        self.script["SEND-HELP"] = [("Agent", {
            "description": "a helper", "prompt": "LOOK-AROUND for the kettle",
            "subagent_type": "general-purpose", "run_in_background": True})]
        self.model.slow["LOOK-AROUND"] = 6  # longer than calls are taken for one prompt's
        self.ready()
        ran = self.run_well("SEND-HELP for the kettle and the canary")
        last = ran.conversation[-1]
        self.assertTrue(last.says("<task-notification>"))
        self.assertTrue(last.says("SEND-HELP"))
        self.assertEqual({text: last.count(text) for text in (RULE, CARD)}, {RULE: 1, CARD: 1})


class InCodex(Facts):
    harness = Codex
    entries = 1
    slots = []


class InOpenCode(Facts):
    harness = OpenCode
    entries = 1
    slots = []

    def test_the_request_for_a_title_carries_no_memory(self):
        self.ready()
        ran = self.run_well(PROMPT)
        titles = [request for request in ran.requests if not request.tools]
        self.assertTrue(titles, "no title was asked for")
        for request in titles:
            self.assertEqual({text: request.count(text) for text in (RULE, CARD)}, {RULE: 0, CARD: 0})
