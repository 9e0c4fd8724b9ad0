"""Servers that are broken or mean harm lead to a correct answer or to the silence."""

import json
import os
import tempfile
import unittest

from hookrun import *

MEMORY_LIMIT = 200 * 1000 * 1000
BIG_PROMPT = 50 * 1000 * 1000
SILENT = {None}
FULL = {FULL_CONTEXT}
RULES_ONLY = {RULES}

# A program of tests/children, what it may lead to without a slot, and whether the prompt is large.
BEHAVIOURS = [
    ("AnswersEveryTool", FULL, False),
    ("AnswersByteByByte", FULL, False),
    ("AnswersOnAnEndlessLine", SILENT, False),
    ("AnswersBehindManyLines", FULL | RULES_ONLY | SILENT, False),
    ("AnswersWithManyValues", SILENT, False),
    ("AnswersAndHangs", SILENT, False),
    ("AnswersAndLeavesGrandchild", FULL, False),
    ("AnswersAndLeavesFlood", FULL | RULES_ONLY, False),
    ("AnswersWithoutReading", RULES_ONLY, False),
    ("AnswersWithoutReading", RULES_ONLY, True),
    ("ClosesOutputAtOnce", SILENT, False),
    ("ClosesInputAtOnce", RULES_ONLY, False),
    ("ClosesInputAtOnce", RULES_ONLY, True),
    ("ClosesStreamsAndLives", SILENT, False),
    ("DiesBySignal", SILENT, False),
    ("ExitsWhileBeingFed", SILENT, False),
    ("ExitsWhileBeingFed", SILENT, True),
    ("FloodsStdout", SILENT, False),
    ("FloodsStderr", SILENT, False),
    ("FloodsBothStreams", SILENT, False),
    ("IgnoresEverySignal", SILENT, False),
    ("NeverReadsStdin", SILENT, False),
    ("NeverReadsStdin", SILENT, True),
    ("PestersItsParent", FULL, False),
    ("SendsAMillionNotifications", FULL | RULES_ONLY | SILENT, False),
    ("StopsItself", SILENT, False),
    ("WritesThenSleeps", SILENT, False),
]


def reply(meta=None, text=RULES, identity=2, **more):
    """One line: the response to a tool call. `text`, `identity` and the values of `meta` are JSON
    when they come as bytes."""
    def written(value):
        return value if isinstance(value, bytes) else json.dumps(value).encode()
    members = [b'"%s":%s' % (key.encode(), written(value)) for key, value in (meta or {}).items()]
    extra = b"".join(b',"%s":%s' % (key.encode(), written(value)) for key, value in more.items())
    return b'{"jsonrpc":"2.0","id":%s,"result":{"content":[{"type":"text","text":%s}],' \
           b'"_meta":{%s}%s}}\n' % (written(identity), written(text), b",".join(members), extra)


def rules(text=RULES, identity=2, **meta):
    return reply({"quillstead/replyKind": "rules",
                  **{"quillstead/" + key: value for key, value in meta.items()}}, text, identity)


def cards(text=MEMORY, **meta):
    return reply({"quillstead/replyKind": "cards",
                  **{"quillstead/" + key: value for key, value in meta.items()}}, text)


HANDSHAKE = b'{"jsonrpc":"2.0","id":1,"result":{}}\n'
OTHER = rules("other")
BIG = "<user-rules>\n" + "r" * 40_000 + "\nIDX\n</user-rules>"
LARGEST = 2**63 - 1
HUGE = (LARGEST, -LARGEST - 1, 2**63, 2**64, -2**64, 10**400, -1, 0, b"1e400", b"-1e400", b"1E-400",
        b"3.0", b"7.5", b"true", b"null", b'"7"', b"[]", b"{}", b"2147483648", b"4294967297")


def rules_replies():
    """Names, replies to rules_get, and what they may lead to without a slot."""
    yield "id 2 before id 1", rules() + HANDSHAKE, RULES_ONLY
    yield "id 2 twice", HANDSHAKE + rules() + OTHER, RULES_ONLY
    yield "id as a text", rules(identity="2"), SILENT
    yield "id 2.7", rules(identity=2.7), RULES_ONLY
    yield "id 2.0", rules(identity=b"2.0"), RULES_ONLY
    yield "id 20e-1", rules(identity=b"20e-1"), RULES_ONLY
    yield "id 1.9999999999999999999", rules(identity=b"1.9999999999999999999"), RULES_ONLY | SILENT
    for identity in (b"true", b"null", b"[2]", b"{}", b"-2", b"3", b"1e999", b"-1e999", b"02"):
        yield "id " + identity.decode(), rules(identity=identity), SILENT
    yield "no line end", HANDSHAKE + rules()[:-1], RULES_ONLY
    yield "carriage returns", (HANDSHAKE + rules()).replace(b"\n", b"\r\n"), RULES_ONLY
    yield "empty lines", b"\n\n\n" + rules() + b"\n\n", RULES_ONLY
    yield "a banner", b"server 1.0 \xff\xfe\x00\n" + rules(), RULES_ONLY
    yield "cut in the middle", rules()[:-40], SILENT
    yield "two documents on a line", rules()[:-1] + rules(), SILENT
    yield "a list of responses", b"[" + rules()[:-1] + b"]\n", SILENT
    yield "an error besides", reply({"quillstead/replyKind": "rules"}, isError="false"), SILENT
    yield "no error besides", reply({"quillstead/replyKind": "rules"}, isError=0), RULES_ONLY
    yield "only zero bytes", b"\0" * 100_000, SILENT
    yield "only line ends", b"\n" * 1_000_000, SILENT
    yield "UTF-16", rules()[:-1].decode().encode("utf-16"), RULES_ONLY | SILENT
    yield "byte order mark", b"\xef\xbb\xbf" + rules(), RULES_ONLY

    for name, bytes_ in (("overlong", b"\xc0\x80"), ("cut", b"\xe2\x82"), ("surrogate", b"\xed\xa0\x80"),
                         ("too high", b"\xf4\x90\x80\x80"), ("continuation", b"\x80"),
                         ("never used", b"\xff"), ("raw line feed", b"\n"), ("raw zero", b"\0")):
        yield "text with %s bytes" % name, rules(b'"a' + bytes_ + b'b"'), SILENT
        yield "metadata with %s bytes" % name, rules(other=b'"' + bytes_ + b'"'), SILENT
    for escape in (b"\\ud800", b"\\udfff", b"\\ud800\\ud800", b"\\udc00\\ud800", b"\\ud83d-",
                   b"\\u12g4", b"\\x41", b"\\q"):
        yield "text with " + escape.decode(), rules(b'"a' + escape + b'b"'), SILENT
        yield "metadata with " + escape.decode(), rules(other=b'"' + escape + b'"'), SILENT
    yield "escaped zero", rules("a\0b"), {"a\0b"}
    yield "every control character", rules("".join(map(chr, range(32)))), \
        {"".join(map(chr, range(32)))}
    yield "line separators", rules("a\u2028b\u2029\u0085\U0001f600"), {"a\u2028b\u2029\u0085\U0001f600"}
    yield "noncharacters", rules("\uffff\ufffe\U0010ffff"), {"\uffff\ufffe\U0010ffff"}

    for depth in (400, 520, 100_000, 1_000_000):
        for opening, closing in ((b"[", b"]"), (b'{"a":', b"}")):
            nested = opening * depth + b"1" + closing * depth
            yield "nested %d times in %s" % (depth, opening.decode()), rules(deep=nested), \
                RULES_ONLY if depth == 400 else SILENT
    yield "unclosed brackets", b"[" * 5_000_000 + b"\n" + rules(), RULES_ONLY
    yield "a number of a million digits", rules(long=b"9" * 1_000_000), RULES_ONLY
    yield "a fraction of a million digits", rules(long=b"0." + b"9" * 1_000_000), RULES_ONLY
    yield "an exponent of a million digits", rules(long=b"1e" + b"9" * 1_000_000), RULES_ONLY
    yield "a hundred thousand keys", rules(
        keys=b"{" + b",".join(b'"%d":0' % number for number in range(100_000)) + b"}"), RULES_ONLY
    yield "one key a hundred thousand times", rules(
        keys=b"{" + b",".join([b'"k":0'] * 100_000) + b"}"), RULES_ONLY
    yield "the kind twice", reply({}).replace(
        b'"_meta":{}', b'"_meta":{"quillstead/replyKind":"empty","quillstead/replyKind":"rules"}'), \
        RULES_ONLY

    for span in HUGE:
        yield "index span %s" % str(span)[:30], rules(indexSpan=span), RULES_ONLY
    for kind in (b"null", b"1", b"[]", b'"cards"', b'""'):
        yield "kind " + kind.decode(), reply({"quillstead/replyKind": kind}), SILENT
    yield "an empty text", rules(""), SILENT
    yield "40 kB of rules", rules(BIG, indexSpan=3), {BIG, None}


def memory_replies():
    """Names, replies to memory_get_relevant, and what they may lead to besides the rules."""
    kept = {RULES + "\n\n" + MEMORY}
    for value in HUGE:
        yield "card count %s" % str(value)[:30], cards(cardCount=value, cardSpans=[8, 8]), RULES_ONLY
        spans = b"[%s,8]" % (value if isinstance(value, bytes) else str(value).encode())
        yield "card spans %s" % spans.decode()[:30], cards(cardCount=2, cardSpans=spans), kept
    yield "a card too many", cards(cardCount=2, cardSpans=[8, 8, 8]), kept
    yield "999 cards", cards(cardCount=999, cardSpans=[1] * 999), kept
    yield "1000 cards", cards(cardCount=1000, cardSpans=[1] * 1000), RULES_ONLY

    # Too large for every harness that has a budget, so that it has to be cut by its spans.
    header = "<quillstead-memory>\nheader\n\n"
    large = header + "c" * 20_000 + "\n\n" + "d" * 20_000 + "\n</quillstead-memory>"
    whole = RULES + "\n\n" + large
    first = RULES + "\n\n" + header + "c" * 20_000 + "\n</quillstead-memory>"
    yield "spans that fit", cards(large, cardCount=2, cardSpans=[20_000, 20_000]), \
        {whole, first, RULES}
    for spans in ([1, 20_000], [20_000, 1], [19_999, 20_001], [20_000], [20_000] * 3,
                  [LARGEST, LARGEST], [LARGEST, 20_000], [20_000, LARGEST], [1, 1], [40_000, 1],
                  [-1, 20_000], [0, 20_000], [2**62, 2**62], [LARGEST - 20_023, 20_000]):
        yield "spans %s that do not fit" % spans, \
            cards(large, cardCount=len(spans), cardSpans=spans), {whole, RULES}
    split_character = header + "\u20ac" * 10_000 + "\n\n" + "d" * 20_000 + "\n</quillstead-memory>"
    yield "a span that ends in a character", \
        cards(split_character, cardCount=2, cardSpans=[29_999, 20_000]), None

    for tag in ("shortcut", "now"):
        fenced = "<quillstead-%s>x" % tag
        for name, value, context in (
                ("blank before", " " + fenced, MEMORY), ("a list", [fenced], MEMORY),
                ("not closed", fenced[:-2], MEMORY),
                ("large", fenced + "y" * 50_000, None)):
            yield "%s %s" % (tag, name), \
                cards(cardCount=2, cardSpans=[8, 8], **{tag: value}), \
                {RULES + "\n\n" + context} if context else \
                {RULES + "\n\n" + MEMORY, RULES + "\n\n" + fenced + "y" * 50_000 + "\n\n" + MEMORY}
    for miss in ("x" * 33, "a b", "a\nb", "ä", "", "2025-11-16T00:00:00.000+00:00 1ms"):
        yield "shortcut miss %r" % miss, cards(cardCount=2, cardSpans=[8, 8], shortcutMiss=miss), kept


class HostileServers(FaultTest):
    def judge(self, case, harness, result, allowed):
        complaint = complaint_about_prompt(harness, result, allowed)
        if not complaint and result.peak_memory > MEMORY_LIMIT and not SANITIZED:
            complaint = "needed %d MB" % (result.peak_memory // 1_000_000)
        self.note(case, complaint)

    def test_every_misbehaviour_ends_in_a_correct_answer_or_the_silence(self):
        for name, allowed, is_large in BEHAVIOURS:
            def serve(harness):
                command, env = arguments(harness), environment(child(name))
                if not is_large:
                    return run(command, prompt_payload(harness), env)
                with large_prompt(harness, BIG_PROMPT) as payload:
                    return run(command, env=env, stdin_file=payload)
            for harness, result in zip(HARNESSES, at_once(2 if is_large else 4, serve, HARNESSES)):
                case = "%s%s, %s" % (name, " with a large prompt" if is_large else "", harness)
                if is_large:
                    self.judge_large(case, harness, result, allowed)
                else:
                    self.judge(case, harness, result, allowed)
            left = leftovers()
            if left:
                self.complaints.append("%s: left over: %s" % (name, left))
        self.settle()

    def judge_large(self, case, harness, result, allowed):
        # The payload alone, in its several forms, takes more memory than the limit on answers.
        self.note(case, complaint_about_prompt(harness, result, allowed | SILENT))

    def test_a_server_that_cannot_be_started_is_a_server_with_nothing_to_say(self):
        with tempfile.TemporaryDirectory() as directory:
            odd = os.path.join(directory, "odd")
            cases = {"missing": odd + "-missing", "a directory": directory, "empty name": "",
                     "a long name": "/" + "x" * 300, "a very long path": "/x" * 5_000,
                     "bare and missing": "no-such-server"}
            for name, content, mode in (("not executable", b"#!/bin/sh\n", 0o644),
                                        ("an empty file", b"", 0o755),
                                        ("not a program", b"\x7fELF" + b"\0" * 100, 0o755),
                                        ("a missing interpreter", b"#!/no/such\n", 0o755)):
                path = cases[name] = odd + name.replace(" ", "-")
                with open(path, "wb") as file:
                    file.write(content)
                os.chmod(path, mode)
            for name, path in cases.items():
                for harness in HARNESSES:
                    env = {**environment(), "QUILLSTEAD_MCP_BIN": path}
                    result = run(arguments(harness), prompt_payload(harness), env)
                    self.judge("%s, %s" % (name, harness), harness, result, SILENT)
        self.settle()

    def replay(self, tool, replies, other):
        """Every reply to `tool`, in every harness and slot; `other`: the reply to the other tool."""
        with tempfile.TemporaryDirectory() as directory:
            def write(name, data):
                with open(os.path.join(directory, name + ".reply"), "wb") as file:
                    file.write(data)
            other_tool = {"rules_get": "memory_get_relevant", "memory_get_relevant": "rules_get"}
            write(other_tool[tool], other)
            env = environment(child("RepliesFromFiles"), QUILLSTEAD_TEST_REPLIES=directory)
            slots = (None, "rules", "index", "recall") if LONG else (None, "index")
            for name, data, allowed in replies:
                write(tool, data)
                places = [(harness, slot) for harness in HARNESSES for slot in slots]
                results = at_once(4, lambda place: run(
                    arguments(*place), prompt_payload(place[0]), env), places)
                if SANITIZED and allowed is not None:
                    allowed = allowed | SILENT  # the server may be too slow
                for (harness, slot), result in zip(places, results):
                    case = "%s, %s, slot %s" % (name, harness, slot)
                    self.judge(case, harness, result, allowed if slot is None else None)
        self.settle()

    def test_every_odd_reply_about_rules_ends_in_a_correct_answer_or_the_silence(self):
        self.replay("rules_get", rules_replies(), reply({"quillstead/replyKind": "empty"}))

    def test_every_odd_reply_about_memory_ends_in_a_correct_answer_or_the_silence(self):
        self.replay("memory_get_relevant", memory_replies(), rules())


if __name__ == "__main__":
    unittest.main()
