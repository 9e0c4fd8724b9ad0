"""The archive for Linux, unpacked where there is nothing else: its programs need no other file."""

import platform
import subprocess
import unittest

import made
import roots
import user

SYSTEM = f"linux-{ {'x86_64': 'x64', 'aarch64': 'arm64'}[platform.machine()] }"
NAME = f"quillstead-{made.VERSION}-{SYSTEM}"


class InAnotherRoot:
    @classmethod
    def setUpClass(cls):
        cls.root = cls.make(cls)
        opt = cls.root / "opt"
        opt.mkdir(exist_ok=True)
        subprocess.run(["tar", "-xzf", made.DIST / f"{NAME}.tar.gz", "-C", opt], check=True)

    def test_installs_asks_and_uninstalls(self):
        user.lives_with(user.User(self, self.root), f"/opt/{NAME}/bin/quillstead")

    def test_says_its_version(self):
        for program in made.PROGRAMS:
            told = user.User(self, self.root).run(f"/opt/{NAME}/bin/{program}", "--version")
            self.assertEqual(told, f"{program} {made.VERSION}\n")


@unittest.skipUnless(roots.can_be_made(), "only root can make another root")
class InDebian(InAnotherRoot, unittest.TestCase):
    make = roots.debian


@unittest.skipUnless(roots.can_be_made(), "only root can make another root")
class InABareRoot(InAnotherRoot, unittest.TestCase):
    """As bare as any distribution can be."""

    make = roots.bare

    def test_has_no_other_program_nor_library(self):
        self.assertEqual(sorted(path.name for path in self.root.iterdir() if path.name != "var"),
                         ["dev", "opt", "proc", "tmp"])
