#!/usr/bin/env python3
"""The pictures show what the programs print. QUILLSTEAD names the built program, beside the others."""

import os
import pathlib
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree

import pages

PICTURES = pages.SOURCE / "docs/pictures"


class Pictures(unittest.TestCase):
    def test_are_what_the_script_draws_now(self):
        programs = pathlib.Path(os.environ["QUILLSTEAD"]).parent
        with tempfile.TemporaryDirectory() as directory:
            subprocess.run([PICTURES / "draw", "--into", directory, programs], check=True)
            for drawn in sorted(pathlib.Path(directory).iterdir()):
                with self.subTest(picture=drawn.name):
                    self.assertEqual(PICTURES.joinpath(drawn.name).read_text(encoding="utf-8"),
                                     drawn.read_text(encoding="utf-8"),
                                     "draw it again: docs/pictures/draw build/release/bin")

    def test_are_whole_load_nothing_and_have_a_dark_form(self):
        pictures = list(PICTURES.glob("*.svg"))
        self.assertTrue(pictures)
        for picture in pictures:
            with self.subTest(picture=picture.name):
                text = picture.read_text(encoding="utf-8")
                xml.etree.ElementTree.fromstring(text)
                self.assertIn("prefers-color-scheme: dark", text)
                self.assertNotRegex(text, r"href|url\(|@import|<script")

    def test_are_all_shown_on_a_page(self):
        shown = "".join(pages.text(page) for page in pages.pages())
        for picture in PICTURES.glob("*.svg"):
            with self.subTest(picture=picture.name):
                self.assertIn(f"pictures/{picture.name}", shown)


if __name__ == "__main__":
    unittest.main()
