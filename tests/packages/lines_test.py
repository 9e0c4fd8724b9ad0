"""The lines that the pages tell users to type, typed: what installs, and what removes."""

import pathlib
import platform
import re
import shutil
import unittest

import made
import roots
import user

MACHINE = {"x86_64": "x86-64", "aarch64": "arm64"}[platform.machine()]
ARCHITECTURE = {"x86-64": "x64", "arm64": "arm64"}[MACHINE]


def lines(section):
    """Those of a section of the page, by what they are for: (with, on), or (with,)."""
    page = (made.SOURCE / "docs/installing.md").read_text()
    text = re.search(rf"^## {section}\n(.*?)(?=^## |\Z)", page, re.DOTALL | re.MULTILINE).group(1)
    found, first = {}, ""
    for row in re.findall(r"^\| (.*) \|$", text, re.MULTILINE)[1:]:  # the first is the heading
        cells = [cell.strip() for cell in row.split("|")]
        first = cells[0] or first
        found[(first, *cells[1:-1])] = re.match("`(.*?)`", cells[-1]).group(1)
    return found


class Lines(unittest.TestCase):
    def setUp(self):
        self.install, self.remove = lines("Install"), lines("Remove")

    def type_in(self, somebody, line):
        somebody.run("bash", "-c", re.sub("^sudo ", "", line))

    def check(self, somebody, quillstead, install, remove):
        self.type_in(somebody, install)
        self.assertEqual(somebody.run(quillstead, "--version"), f"quillstead {made.VERSION}\n")
        self.type_in(somebody, remove)
        self.assertFalse((somebody.root / pathlib.Path(quillstead).relative_to("/")).exists())

    def user_here(self):
        somebody = user.User(self)
        (somebody.place / "dist").symlink_to(made.DIST)
        return somebody

    def test_are_those_of_the_readme(self):
        block = re.search(r"^```sh\n(npm install.*?)```", (made.SOURCE / "README.md").read_text(),
                          re.DOTALL | re.MULTILINE).group(1)
        told = [re.sub(" +#.*", "", line) for line in block.splitlines()]
        self.assertEqual(told, [self.install[where] for where in [
            ("npm", "Linux, x86-64"), ("Homebrew", "macOS, Linux"), ("dpkg", "Debian and Ubuntu, x86-64"),
            ("tar", "Linux, x86-64")]])

    def test_of_npm_do_what_they_say(self):
        somebody = self.user_here()
        (somebody.place / ".npmrc").write_text(f"prefix={somebody.home}/prefix\nupdate-notifier=false\n")
        self.check(somebody, f"{somebody.home}/prefix/bin/quillstead", self.install["npm", f"Linux, {MACHINE}"],
                   self.remove["npm",].replace("x64", ARCHITECTURE))
        left = [path for path in (somebody.place / "prefix").rglob("*") if not path.is_dir() or path.is_symlink()]
        self.assertEqual(left, [])

    def test_of_tar_do_what_they_say(self):
        somebody = self.user_here()
        (somebody.place / ".local").mkdir()
        self.check(somebody, f"{somebody.home}/.local/bin/quillstead", self.install["tar", f"Linux, {MACHINE}"],
                   self.remove["tar, or built from source",])
        self.assertEqual(list((somebody.place / ".local/bin").iterdir()), [])

    @unittest.skipUnless(roots.can_be_made(), "only root can make another root")
    def test_of_dpkg_do_what_they_say(self):
        somebody = user.User(self, roots.debian(type(self)))
        somebody.environment["PATH"] = "/usr/sbin:/usr/bin:/sbin:/bin"
        shutil.copytree(made.DIST, somebody.place / "dist")
        self.check(somebody, "/usr/bin/quillstead", self.install["dpkg", f"Debian and Ubuntu, {MACHINE}"],
                   self.remove["dpkg",])
