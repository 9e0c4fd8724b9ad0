#!/usr/bin/env python3
"""Numbers that the pages give and the code has: they are the same."""

import json
import re
import unittest

import pages

KIB, MIB = 1024, 1024 * 1024

# The page, what it says with the number as {}, what one of it is in the code; the source, and its name there.
LIMITS = [
    ("docs/memory.md", r"cards in an answer to a prompt \| {} bytes", 1, "src/server/Recall/Recall.h", "longestBlock"),
    ("docs/memory.md", r"bytes together, {} a card", 1, "src/server/Recall/Recall.h", "longestCard"),
    ("docs/memory.md", r"size of a card or of `rules.md` \| {} MiB", MIB, "src/server/Store/StoreFiles.h", "largestFile"),
    ("docs/memory.md", r"a title or name \| {} bytes", 1, "src/server/Shown.h", "longestLine"),
    ("docs/memory.md", r"index of cards \| as many as fit {} bytes", 1, "src/server/Rules/RulesBlock.h", "ordinaryIndex"),
    ("docs/memory.md", r"words of a prompt \| the first {} ", 1, "src/server/Index/Ranking.h", "mostWords"),
    ("docs/memory.md", r"of the first {} KiB", KIB, "src/server/Index/Ranking.h", "mostPromptBytes"),
    ("docs/memory.md", r"without a ceiling \| {} bytes", 1, "src/server/Tools/RulesGet.cpp", "ceilingOfCards"),
    ("docs/memory.md", r"a request \| {} MiB", MIB, "src/server/Server.cpp", "longestLine"),
    ("docs/memory.md", r"a request \| [^|]* {} values", 1, "src/server/Protocol.cpp", "mostValues"),
    ("docs/memory.md", r"store of more than {} cards", 1, "src/server/Index/SeenFiles.h", "fewFiles"),
    ("docs/reliability.md", r"The hook keeps {} MiB", MIB, "src/hook/MCP/ChildProcess.h", "longestOutput"),
    ("docs/decisions.md", r"kept up to {} MiB", MIB, "src/hook/MCP/ChildProcess.h", "longestOutput"),
    ("docs/decisions.md", r"a line of more than {} MiB is no reply", MIB, "src/hook/MCP/MCPClient.cpp", "longestResponse"),
    ("docs/glossary.md", r"the whole run, {} seconds", 1, "src/hook/Serve.cpp", "allowance"),
    ("docs/server-protocol.md", r"exiting: {} seconds for `rules_get`", 1, "src/hook/Lanes/RulesLane.h", "longestLeash"),
    ("docs/security.md", r"a line of more than {} MiB", MIB, "src/server/Server.cpp", "longestLine"),
    ("docs/harnesses.md", r"\| Claude Code \| [^|]*\| {} \|", 1, "src/hook/Harness/ClaudeCode.h", "contextBudget"),
    ("docs/harnesses.md", r"\| Codex \| [^|]*\| {} \|", 1, "src/hook/Harness/Codex.h", "contextBudget"),
    ("docs/harnesses.md", r"\| Cursor \| [^|]*\| {} \|", 1, "src/hook/Harness/Cursor.h", "contextBudget"),
    ("docs/cli.md", r"whole report takes at most {} s", 1, "src/cli/Doctor.cpp", "wholeTime"),
    ("docs/cli.md", r"answers, within {} s", 1, "src/cli/Doctor.cpp", "serverTime"),
    ("docs/cli.md", r"its last {} lines", 1, "src/cli/Doctor/LogChecks.cpp", "mostLines"),
    ("docs/recall.md", r"less than {} of the best score", 1, "src/server/Index/Ranking.h", "leastPartOfBest"),
    ("docs/recall.md", r"left out; {} if the prompt is mostly in Korean", 1, "src/server/Index/Ranking.h", "leastPartOfBestHangul"),
    ("docs/memory.md", r"rank are left out; {} for a prompt", 1, "src/server/Index/Ranking.h", "leastPartOfBestHangul"),
    ("docs/recall.md", r"in Korean, {} in Thai, Lao, Khmer or Burmese", 1, "src/server/Index/Ranking.h", "leastPartOfBestAlphabet"),
    ("docs/memory.md", r"in Korean, {} in Thai, Lao, Khmer or Burmese", 1, "src/server/Index/Ranking.h", "leastPartOfBestAlphabet"),
    ("docs/recall.md", r"in Thai {} % of the weight", 0.01, "src/server/Index/Ranking.h", "leastRunsOfAlphabet"),
    ("docs/recall.md", r"in Korean {} %\.", 0.01, "src/server/Index/Ranking.h", "leastPairsOfHangul"),
]
NUMBER = r"(\d[\d,.]*\d|\d)"


def constant(source, name):
    """What `name` is in a source: a number, or a product of numbers."""
    text = pages.text(source)
    found = re.search(rf"\b{name}(?:\(\) const override)? ?(?:= ?|\{{ ?(?:return )?)([^;]*?)\}}?;", text)
    if not found:
        raise AssertionError(f"{source} has no {name}")
    product = 1.0
    factors = re.findall(r"(?<![\w:])\d[\d'.]*", re.sub(r"std::size_t\{(\d+)\}", r"\1", found.group(1)))
    for factor in factors:
        product *= float(factor.replace("'", ""))
    if not factors:
        raise AssertionError(f"{source}: {name} is no number")
    return product


class Numbers(unittest.TestCase):
    def test_of_limits_are_those_in_the_code(self):
        for page, sentence, unit, source, name in LIMITS:
            with self.subTest(page=page, sentence=sentence):
                text = re.sub(r"\s+", " ", pages.text(page))
                found = re.search(sentence.replace("{}", NUMBER), text)
                self.assertTrue(found, "the page does not say this")
                self.assertAlmostEqual(float(found.group(1).replace(",", "")) * unit, constant(source, name))

    def test_of_counted_costs_are_what_the_guard_holds_them_to(self):
        rows = {"pretool": "pre-tool, 0.5 KB", "recall": "recall, minimal server", "refusal": "refusal"}
        counts = pages.text("docs/performance.md").partition("## Counts")[2]
        for line in pages.text("tests/performance/figures.txt").splitlines():
            if line.startswith("#"):
                continue
            run, *figures = line.split()
            with self.subTest(run=run):
                found = re.search(rf"^\| {re.escape(rows[run])} \| {NUMBER} \| {NUMBER} \|", counts, re.MULTILINE)
                self.assertTrue(found, "the table of counts has no such row")
                for shown, figure in zip(found.groups(), figures):  # the guard lets a tenth pass, too
                    self.assertAlmostEqual(int(shown.replace(",", "")), int(figure), delta=int(figure) / 10)

    def test_and_the_names_of_fuzz_targets_are_complete(self):
        build = pages.text("fuzz/CMakeLists.txt")
        harnesses = json.loads(pages.text("tests/helpers/harnesses.json"))
        targets = re.findall(r"^quillstead_add_fuzzer\(([\w-]+)", build, re.MULTILINE)
        targets += [f"payload-{harness}" for harness in harnesses]
        page = pages.text("docs/reliability.md")
        rows = page.partition("What the fuzz targets check")[2].partition("\n## ")[0]
        named = re.findall(r"`([\w<>-]+)`", "".join(re.findall(r"^\| (`.*?) \|", rows, re.MULTILINE)))
        named.remove("payload-<harness>")
        named += [f"payload-{harness}" for harness in harnesses]
        self.assertEqual(sorted(targets), sorted(named))
        self.assertIn(f"| {len(targets)} targets, ", page)


if __name__ == "__main__":
    unittest.main()
