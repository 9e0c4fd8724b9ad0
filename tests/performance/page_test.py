#!/usr/bin/env python3
"""What scripts/bench --write puts into a page."""

import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "bench", "measure"))

import page  # noqa: E402  (found through the line above)

TIMES = [("pre-tool, 0.5 KB", "floor", "95 µs", "90 µs", "1.00"),
         ("pre-tool, 0.5 KB", "quillstead-hook", "123 µs", "110 µs", "1.29"),
         ("refusal", "floor", "94 µs", "90 µs", "1.00")]
TARGETS = [("hook, stripped", "≤ 0.75 MB", "0.632 MB", "met"), ("growth: the largest", "≤ 1.1", "1.2", "**not met**")]
COUNTS = [("jq: stamps 0.5 KB", "", 90, 295), ("pretool", "22,051", 26, 11)]


class PageTest(unittest.TestCase):
    def written(self, text):
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "page.md")
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
            page.write(path, "a machine.", TARGETS, TIMES, ("run", "instructions", "calls", "faults"), COUNTS)
            with open(path, encoding="utf-8") as file:
                return file.read()

    def test_stands_between_the_marks_and_replaces_what_was_there(self):
        text = self.written(f"before\n{page.BEGIN}\nold\n{page.END}\nbehind\n")
        self.assertTrue(text.startswith(f"before\n{page.BEGIN}\n\nMeasured on "))
        self.assertTrue(text.endswith(f"|\n\n{page.END}\nbehind\n"))
        self.assertNotIn("old", text)
        self.assertEqual(self.written(text), text)

    def test_names_a_run_once_and_shows_the_hook_in_bold(self):
        text = self.written(f"{page.BEGIN}{page.END}")
        self.assertIn("| pre-tool, 0.5 KB | floor | 95 µs | 1.00 |\n|  | **quillstead-hook** | **123 µs** | **1.29** |\n"
                      "| refusal | floor |", text)

    def test_has_the_peers_last_and_no_target_of_the_system_s_compiler(self):
        text = self.written(f"{page.BEGIN}{page.END}")
        self.assertLess(text.index("| pre-tool, 0.5 KB | 22,051 |"), text.index("| jq |  | 90 | 295 |"))
        self.assertIn("| hook, stripped |", text)
        self.assertNotIn("growth", text)

    def test_is_not_put_into_a_page_without_marks(self):
        with self.assertRaises(SystemExit):
            self.written("no marks\n")


if __name__ == "__main__":
    unittest.main()
