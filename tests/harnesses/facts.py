"""What has to be true in the real harnesses, one test a fact. `run` makes one class for each harness."""

import collections
import functools
import json
import re
import shutil
import threading
import time
import unittest

from model import Model
from stage import ClaudeCode, Codex, OpenCode

RULE, CARD = "RULE-TEA", "CARD-KETTLE"
PROJECT_RULE, PROJECT_CARD = "RULE-TABS", "CARD-CANARY"
PROMPT = "where is the kettle, and the canary?"
ONE_PROMPT = 5.5  # seconds; calls that come closer are taken for those of one prompt


class Trial:
    """A stand-in model, and a harness whose user has memory, and a project with memory."""

    def __init__(self, family):
        self.script = {}
        self.model = Model(self.script)
        self.stage = family.harness(family.binaries, family.packages, self.model)

    def __enter__(self):
        self.model.__enter__()
        self.stage.write_personal(rules=f"- {RULE}: always drink tea.\n",
                                  kettle=f"# Kettle\n\n{CARD}: the kettle is on the third floor.\n")
        self.stage.write_project(rules=f"- {PROJECT_RULE}: indent with tabs.\n",
                                 canary=f"# Canary\n\n{PROJECT_CARD}: the canary takes ten minutes.\n")
        return self

    def __exit__(self, *_):
        self.stage.close()
        self.model.__exit__()

    def set_up(self):
        """As the README says, in a project that the user trusts."""
        self.stage.install()
        self.stage.quillstead("trust", str(self.stage.project))


def once(trial):
    """For a trial that several facts look at: the first of them runs it, the others wait for it."""
    locks, kept = collections.defaultdict(threading.Lock), {}

    @functools.wraps(trial)
    def shown(self):
        family = type(self)
        with locks[family]:
            if family not in kept:
                try:
                    kept[family] = trial(self), None
                except Exception as error:  # each fact that needs the trial is red then
                    kept[family] = None, error
        value, error = kept[family]
        if error:
            raise error
        return value
    return shown


class Facts(unittest.TestCase):
    """The facts that hold in every harness. `harness`, `binaries` and `packages` are set by `run`."""

    harness = None
    binaries = None
    packages = None

    def setUp(self):
        self.notes = []

    @functools.cached_property
    def trial(self):
        trial = Trial(type(self))
        trial.__enter__()
        self.addCleanup(trial.__exit__)
        return trial

    @property
    def stage(self):
        return self.trial.stage

    @property
    def script(self):
        return self.trial.script

    def run_well(self, prompt, **options):
        ran = self.stage.run(prompt, **options)
        self.assertEqual(ran.status, 0, ran.output)
        self.assertIn("Done.", ran.output)
        self.assertTrue(ran.conversation, "the model was never asked")
        return ran

    def run_next(self, prompt):
        """The next prompt of the session, in a new process, and not so soon that it counts as the same."""
        time.sleep(max(0, self.trial.model.requests[-1].time + ONE_PROMPT - time.monotonic()))
        return self.run_well(prompt, again=True)

    def assertSaid(self, ran, counts):
        """How often each text stands in the last request of the conversation."""
        request = ran.conversation[-1]
        self.assertEqual({text: request.count(text) for text in counts}, counts)

    # --- What a prompt brings

    @once
    def first_prompt(self):
        self.trial.set_up()
        return self.run_well(PROMPT), self.stage.log(), str(self.stage.home)

    def test_rules_and_cards_of_both_stores_reach_the_model_once(self):
        ran, _, _ = self.first_prompt()
        self.assertSaid(ran, {RULE: 1, CARD: 1, PROJECT_RULE: 1, PROJECT_CARD: 1})

    def test_each_entry_leaves_one_line_in_the_log(self):
        _, log, _ = self.first_prompt()
        self.assertEqual(len(log), self.entries, log)
        self.assertEqual(sorted(re.findall(r"slot=(\w+)", "\n".join(log))), self.slots)

    def test_nothing_of_an_untrusted_project_reaches_the_model(self):
        self.stage.install()
        ran = self.run_well(PROMPT)
        self.assertSaid(ran, {RULE: 1, CARD: 1, PROJECT_RULE: 0, PROJECT_CARD: 0})
        self.assertTrue(ran.conversation[-1].says("quillstead trust"))

    # --- Tools

    def test_the_memory_tools_are_offered(self):
        _, model, _ = self.prompt_with_a_helper()  # a server may come to a first prompt too late
        for tool in ("memory_add", "memory_get_relevant", "rules_get", "grab"):
            name = self.harness.memory_tool.replace("memory_add", tool)
            self.assertTrue(self.offers(model.requests[-1], name), name)

    def offers(self, request, name):
        return name in request.tools

    # --- A sub-agent

    @once
    def prompt_with_a_helper(self):
        """The helper notes that the sky is green, and then the agent that the milk is blue."""
        helper = "LOOK-AROUND for the kettle and NOTE-IT"
        self.script["SEND-HELP"] = [*self.stage.calls_subagent(helper),
                                    *self.stage.calls_memory_add("the milk is blue")]
        self.script["NOTE-IT"] = self.stage.calls_memory_add("the sky is green")
        self.trial.model.slow["SEND-HELP"] = ONE_PROMPT
        shutil.rmtree(self.stage.project / ".quillstead")  # so that all notes are personal
        self.stage.install()
        self.run_well("SEND-HELP please")
        wait_until(lambda: any("the sky is green" in text for text in self.stage.cards()))
        return self.stage.cards(), self.trial.model, self.stage.log()

    def noted(self, cards, text):
        found = [card for card in cards if text in card]
        self.assertEqual(len(found), 1, cards)
        return found[0]

    def test_the_agent_adds_a_card(self):
        cards, _, _ = self.prompt_with_a_helper()
        self.assertNotRegex(self.noted(cards, "the milk is blue"), r"(?m)^subagent:")

    def test_a_card_of_a_sub_agent_carries_its_stamp(self):
        cards, _, _ = self.prompt_with_a_helper()
        self.assertRegex(self.noted(cards, "the sky is green"), r"(?m)^subagent: \S+")

    def test_the_rules_reach_a_sub_agent(self):
        _, model, _ = self.prompt_with_a_helper()
        requests = helpers_requests(model)
        self.assertTrue(requests, "no sub-agent asked the model")
        self.assertEqual(requests[-1].count(RULE), 1)

    def test_a_call_that_the_user_has_to_allow_is_not_run_without_asking(self):
        self.script["SEND-HELP"] = self.stage.calls_subagent("LOOK-AROUND and NOTE-IT")
        self.script["NOTE-IT"] = self.stage.calls_memory_add("the sky is green")
        shutil.rmtree(self.stage.project / ".quillstead")
        self.stage.install()
        self.stage.want_to_be_asked()
        ran = self.stage.run("SEND-HELP please")
        requests = helpers_requests(self.trial.model)
        self.assertTrue(requests, "no sub-agent asked the model")
        self.assertFalse([card for card in self.stage.cards() if "the sky is green" in card])
        answers = [text for role, text in requests[-1].turns if role == "tool"]
        self.assertRegex("\n".join([ran.output, *answers]), self.refusal)

    # --- A session

    @once
    def session(self):
        """Five prompts, a compaction, and one more, each in a process that goes on with the session."""
        self.trial.set_up()
        runs = [self.run_well(PROMPT)]
        for word in ("again", "and again", "once more", "and now"):
            runs.append(self.run_next(f"{word}: {PROMPT}"))
        self.stage.compact()
        return runs, self.run_next(f"at last: {PROMPT}"), self.stage.log()

    def test_a_session_of_five_prompts_brings_the_rules_once_and_no_card_twice(self):
        runs, _, _ = self.session()
        self.assertSaid(runs[-1], {RULE: 1, CARD: 1, PROJECT_RULE: 1, PROJECT_CARD: 1})
        for word in ("again", "and now"):
            self.assertTrue(runs[-1].conversation[-1].says(f"{word}: {PROMPT}"))

    def test_a_compaction_brings_rules_and_cards_once_more(self):
        _, last, log = self.session()
        self.assertSaid(last, {RULE: 1, CARD: 1, PROJECT_RULE: 1, PROJECT_CARD: 1})
        self.assertIn("card=1", log[-1], "the rules came as a pointer: nothing was compacted")

    # --- Two levels

    def doubled(self):
        self.trial.set_up()
        self.stage.install_in_project()
        ran = self.run_well(PROMPT)
        report = json.loads(self.stage.quillstead("doctor", "--json", self.stage.name, check=False).stdout)
        check, = [each for each in report["checks"] if each["id"].endswith(".double")]
        return ran, check

    # --- What is broken

    @once
    def prompt_without_us(self):
        return self.run_well(PROMPT), str(self.stage.home)

    def break_program(self, name, text):
        """Puts something else in the place of one of our programs, for this trial alone."""
        place = self.stage.home / "bin"
        shutil.copytree(self.stage.binaries, place, ignore=lambda _, names: [
            other for other in names if other not in ("quillstead", "quillstead-hook", "quillstead-mcp")])
        self.stage.binaries = place
        self.trial.set_up()
        (place / name).unlink()
        if text is not None:
            (place / name).write_text(text)
            (place / name).chmod(0o755)

    def goes_through(self):
        """The prompt is answered; a harness that waits for what hangs meets the end of `Stage.run`."""
        bare, _ = self.prompt_without_us()
        ran = self.run_well(PROMPT)
        self.notes.append(f"{ran.seconds:.1f} s, {bare.seconds:.1f} s without us")
        self.assertTrue(ran.conversation[-1].says(PROMPT))
        self.assertSaid(ran, {RULE: 0, CARD: 0})

    def hangs(self):
        """Until the trial is over."""
        return f"#!/bin/sh\nwhile [ -e '{self.stage.home}' ]; do sleep 1; done\n"

    def test_a_prompt_goes_through_when_the_server_is_missing(self):
        self.break_program("quillstead-mcp", None)
        self.goes_through()

    def test_a_prompt_goes_through_when_the_server_crashes(self):
        self.break_program("quillstead-mcp", "#!/bin/sh\nkill -SEGV $$\n")
        self.goes_through()

    def test_a_prompt_goes_through_when_the_server_hangs(self):
        self.break_program("quillstead-mcp", self.hangs())
        self.goes_through()

    def test_a_prompt_goes_through_when_the_hook_is_missing(self):
        self.break_program("quillstead-hook", None)
        self.goes_through()

    def test_a_prompt_goes_through_when_the_hook_hangs(self):
        self.break_program("quillstead-hook", self.hangs())
        self.goes_through()


def wait_until(holds, seconds=60):
    end = time.monotonic() + seconds
    while not holds() and time.monotonic() < end:
        time.sleep(0.1)


def helpers_requests(model):
    def asks(request, word):
        return any(role == "user" and word in text for role, text in request.turns)
    return [request for request in model.requests
            if request.tools and asks(request, "LOOK-AROUND") and not asks(request, "SEND-HELP")]


class InClaudeCode(Facts):
    harness = ClaudeCode
    entries = 3
    slots = ["index", "recall", "rules"]
    refusal = "(?i)permissions? to use mcp__quillstead__memory_add"

    def offers(self, request, name):
        return name in request.tools or request.says(name)  # listed by name, loaded by a search

    def test_the_same_entry_at_two_levels_runs_once(self):
        ran, check = self.doubled()
        self.assertSaid(ran, {RULE: 1, CARD: 1})
        self.assertEqual(len(self.stage.log()), self.entries)
        self.assertEqual(check["status"], "ok", check)

    def test_the_notification_of_a_background_agent_brings_no_second_dose(self):
        self.script["SEND-HELP"] = [("Agent", {
            "description": "a helper", "prompt": "LOOK-AROUND for the kettle",
            "subagent_type": "general-purpose", "run_in_background": True})]
        self.trial.model.slow["LOOK-AROUND"] = ONE_PROMPT
        self.trial.set_up()
        last = self.run_well("SEND-HELP for the kettle and the canary").conversation[-1]
        self.assertTrue(last.says("<task-notification>"))
        self.assertTrue(last.says("SEND-HELP"))
        self.assertEqual({text: last.count(text) for text in (RULE, CARD)}, {RULE: 1, CARD: 1})


class InCodex(Facts):
    harness = Codex
    entries = 1
    slots = []
    refusal = "MCP tool call requires approval"

    def offers(self, request, name):
        return name.replace("quillstead__", "quillstead") in request.tools  # a name space, and a name

    def test_the_notification_of_a_sub_agent_brings_no_second_dose(self):
        _, model, log = self.prompt_with_a_helper()
        last = model.requests[-1]
        self.assertTrue(last.says("<subagent_notification>"))
        self.assertTrue(last.says("SEND-HELP"))
        self.assertEqual(last.count("<user-rules>"), 1)
        self.assertEqual(len(log), 2, "one for the agent and one for the helper")

    def test_an_entry_at_two_levels_runs_twice_and_doctor_says_so(self):
        _, check = self.doubled()
        self.assertEqual(len(self.stage.log()), 2)
        self.assertEqual(check["status"], "warn", check)
        self.assertIn(str(self.stage.project), check["fix"])


class InOpenCode(Facts):
    harness = OpenCode
    entries = 1
    slots = []
    refusal = "quillstead_memory_add.*auto-rejecting"

    def test_a_plugin_at_two_levels_brings_memory_once_and_doctor_says_so(self):
        ran, check = self.doubled()
        self.assertSaid(ran, {RULE: 1, CARD: 1})
        self.assertEqual(check["status"], "warn", check)
        self.assertIn(str(self.stage.project), check["fix"])

    def test_the_request_for_a_title_carries_no_memory(self):
        ran, _, _ = self.first_prompt()
        titles = [request for request in ran.requests if not request.tools]
        self.assertTrue(titles, "no title was asked for")
        for request in titles:
            self.assertEqual({text: request.count(text) for text in (RULE, CARD)}, {RULE: 0, CARD: 0})

    def test_what_the_model_has_in_its_cache_stays_as_it_was(self):
        """Each request begins with the last one, and instructions are those of a prompt without us."""
        runs, _, _ = self.session()
        requests = [ran.conversation[-1].body["messages"] for ran in runs]
        for earlier, later in zip(requests, requests[1:]):
            self.assertEqual(later[:len(earlier)], earlier)
        ours, _, home = self.first_prompt()
        bare, bare_home = self.prompt_without_us()
        self.assertEqual(instructions(ours, home), instructions(bare, bare_home))


def instructions(ran, home):
    """The system's text and the tools, without what names our server."""
    request = ran.conversation[0]
    texts = [text.replace(home, "~") for role, text in request.turns if role == "system"]
    texts = [re.sub(r"\s*<mcp_instructions>.*</mcp_instructions>", "", text, flags=re.S) for text in texts]
    return texts, [name for name in request.tools if not name.startswith("quillstead_")]
