"""The Homebrew formula: its sums, and what it does, told to a stand-in for Homebrew."""

import hashlib
import pathlib
import platform
import re
import shutil
import subprocess
import tempfile
import unittest

import made
import user

FORMULA = made.DIST / "quillstead.rb"
URL = "https://downloads.example.org/quillstead/"

STAND_IN = pathlib.Path(__file__).with_name("homebrew.rb")
HERE = f"linux-{ {'x86_64': 'x64', 'aarch64': 'arm64'}[platform.machine()] }"
SYSTEMS = {"macos": "macos-universal", "linux-x64": "linux-x64", "linux-arm64": "linux-arm64"}


def told(formula, system, *places):
    """What the formula says for that system, by name."""
    ended = subprocess.run(["ruby", STAND_IN, formula, system, *places], check=True,
                           stdout=subprocess.PIPE, text=True)
    return dict(line.split(" ", 1) for line in ended.stdout.splitlines() if " " in line)


@unittest.skipUnless(FORMULA.exists(), "a formula is made with the archives of all systems only")
class Formula(unittest.TestCase):
    def test_has_the_sums_of_the_archives(self):
        named = dict(re.findall(r'url "BASE_URL/(.*)"\n +sha256 "(\w+)"', FORMULA.read_text()))
        archives = {archive.name: hashlib.sha256(archive.read_bytes()).hexdigest()
                    for archive in made.DIST.glob("*.tar.gz")}
        self.assertEqual(len(archives), 3)
        self.assertEqual(named, archives)

    def test_names_the_place_that_the_owner_gives(self):
        with tempfile.TemporaryDirectory() as dist:
            for archive in made.DIST.glob("*.tar.gz"):
                shutil.copy(archive, dist)
            subprocess.run([made.SOURCE / "packaging/homebrew/formula", dist, made.VERSION, "--base-url", URL],
                           check=True, stdout=subprocess.DEVNULL)
            with open(f"{dist}/quillstead.rb", encoding="utf-8") as formula:
                written = formula.read()
        self.assertEqual(written, FORMULA.read_text().replace("BASE_URL/", URL))


@unittest.skipUnless(FORMULA.exists() and shutil.which("ruby"), "there is no formula, or no ruby")
class InRuby(unittest.TestCase):
    def test_brings_each_system_its_archive(self):
        for system, archive in SYSTEMS.items():
            with self.subTest(system=system):
                said = told(FORMULA, system)
                self.assertEqual(said["version"], made.VERSION)
                self.assertEqual(said["url"], f"BASE_URL/quillstead-{made.VERSION}-{archive}.tar.gz")
                content = (made.DIST / said["url"].rpartition("/")[2]).read_bytes()
                self.assertEqual(said["sha256"], hashlib.sha256(content).hexdigest())

    def test_installs_and_passes_its_own_test(self):
        with tempfile.TemporaryDirectory() as brew:
            self.assertEqual(self.install(FORMULA, made.DIST, brew)["assertions"], "3")

    def test_installs_what_its_users_live_with(self):
        somebody = user.User(self)
        self.install(FORMULA, made.DIST, somebody.place / "prefix")
        user.lives_with(somebody, somebody.home / "prefix/bin/quillstead")

    def test_upgrades_and_keeps_the_settings_working(self):
        somebody = user.User(self)
        brew, quillstead = somebody.place / "prefix", somebody.home / "prefix/bin/quillstead"
        with tempfile.TemporaryDirectory() as scratch:
            self.install(*self.older(pathlib.Path(scratch)), brew)
        self.assertEqual(somebody.run(quillstead, "--version"), f"quillstead {made.OLDER}\n")
        somebody.run(quillstead, "install")
        somebody.write_card()
        self.install(FORMULA, made.DIST, brew)
        shutil.rmtree(brew / "Cellar/quillstead" / made.OLDER)  # as `brew cleanup` does
        hook = somebody.handlers()["recall"][0]
        self.assertEqual(somebody.run(hook, "--version"), f"quillstead-hook {made.VERSION}\n")
        self.assertIn("Never order coffee", somebody.ask())
        for name, check in somebody.doctor(quillstead).items():
            self.assertIn(check["status"], ("ok", "skip"), f"{name}: {check}")

    def install(self, formula, dist, brew):
        """Does what `brew install` or `brew upgrade` would."""
        version = re.search('version "(.*)"', formula.read_text()).group(1)
        with tempfile.TemporaryDirectory() as tree:
            subprocess.run(["tar", "-xzf", dist / f"quillstead-{version}-{HERE}.tar.gz",
                            "-C", tree, "--strip-components=1"], check=True)
            return told(formula, HERE, tree, brew)

    @staticmethod
    def older(scratch):
        """A formula of an older version, and where its archives are."""
        stage = made.older_stage(scratch / "stage")
        for system in SYSTEMS.values():
            name = f"quillstead-{made.OLDER}-{system}"
            (stage / system).rename(stage / name)
            subprocess.run(["tar", "-czf", scratch / f"{name}.tar.gz", "-C", stage, name], check=True)
        subprocess.run([made.SOURCE / "packaging/homebrew/formula", scratch, made.OLDER], check=True,
                       stdout=subprocess.DEVNULL)
        return scratch / "quillstead.rb", scratch
