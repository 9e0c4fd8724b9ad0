#!/usr/bin/env python3
"""Links between the pages. Nothing is fetched. CMAKE and BUILD name CMake and the directory of a build."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest
import urllib.parse

import pages


def links(page):
    prose = re.sub(r"`[^`]*`", "", pages.prose(page))
    found = re.findall(r"\]\(([^)\s]+)\)", prose)
    return found + re.findall(r'(?:src|srcset|href)="([^"]+)"', prose)


def anchors(page):
    """The names that a page's headings get where it is shown."""
    found = set()
    for heading in re.findall(r"^#+ (.+)$", pages.prose(page), re.MULTILINE):
        words = re.sub(r"[^\w\- ]", "", heading.replace("`", "").lower())
        found.add(words.replace(" ", "-"))
    return found


class Links(unittest.TestCase):
    def assert_links_lead_somewhere(self, all_pages):
        seen = 0
        for page in all_pages:
            for link in links(page):
                if re.match(r"[a-z]+:", link):
                    continue
                path, _, anchor = urllib.parse.unquote(link).partition("#")
                target = (page.parent / path).resolve() if path else page
                with self.subTest(page=str(page), link=link):
                    self.assertTrue(target.exists(), "there is no such file")
                    if anchor:
                        self.assertIn(anchor, anchors(target))
                seen += 1
        self.assertGreater(seen, 50)

    def test_lead_to_files_and_headings_that_exist(self):
        self.assert_links_lead_somewhere(pages.pages())

    def test_lead_somewhere_where_the_pages_are_installed(self):
        cmake, build = os.environ["CMAKE"], os.environ["BUILD"]
        with tempfile.TemporaryDirectory() as prefix:
            subprocess.run([cmake, "--install", build, "--component", "documents", "--prefix", prefix],
                           check=True, stdout=subprocess.DEVNULL)
            self.assert_links_lead_somewhere(sorted(pathlib.Path(prefix).resolve().rglob("*.md")))

    def test_load_no_picture_from_elsewhere(self):
        for page in pages.pages():
            for picture in re.findall(r"!\[[^\]]*\]\(([^)\s]+)|<img[^>]+src=\"([^\"]+)", pages.prose(page)):
                with self.subTest(page=pages.name(page)):
                    self.assertNotRegex("".join(picture), r"^[a-z]+:|^//")

    def test_reach_every_page_from_the_index(self):
        docs = pages.SOURCE / "docs"
        listed = {(docs / link.partition("#")[0]).resolve() for link in links(docs / "README.md")}
        for page in sorted(docs.glob("*.md")):
            if page.name != "README.md":
                with self.subTest(page=page.name):
                    self.assertIn(page, listed)
        for page in ["README.md", "CONTRIBUTING.md", "SECURITY.md"]:
            with self.subTest(page=page):
                self.assertIn(pages.SOURCE / page, listed)
        self.assertIn("docs/README.md", links(pages.SOURCE / "README.md"))

    def test_name_source_files_that_exist(self):
        paths = [path.relative_to(pages.SOURCE) for path in pages.SOURCE.rglob("*.*")]
        files = ["/" + str(path) for path in paths if pages.NOT_OURS.isdisjoint(path.parts)]
        of_the_system = {"unistd.h"}
        for page in map(pages.name, pages.pages()):
            for span in pages.spans(page):
                for source in set(re.findall(r"(?<![*>\w./-])[\w./-]+\.(?:cpp|h|c|py)\b", span)) - of_the_system:
                    with self.subTest(page=page, source=source):
                        self.assertTrue(any(file.endswith("/" + source) for file in files), "there is no such file")


if __name__ == "__main__":
    unittest.main()
