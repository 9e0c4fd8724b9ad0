"""The Debian packages: what is in them, and how a minimal Debian installs, upgrades and purges one."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

import made
import roots
import user

ARCHITECTURES = {architecture: tree for architecture, tree in {"amd64": "linux-x64", "arm64": "linux-arm64"}.items()
                 if tree in made.TREES}
if roots.can_be_made():
    roots.fetch_debian()


def package(architecture, version=made.VERSION, directory=made.DIST):
    return directory / f"quillstead_{version}_{architecture}.deb"


def told(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


class Packages(unittest.TestCase):
    def test_please_lintian(self):
        for architecture in ARCHITECTURES:
            with self.subTest(architecture=architecture):
                ran = subprocess.run(["lintian", "--allow-root", "--fail-on", "error,warning", package(architecture)],
                                     capture_output=True, text=True)
                self.assertEqual((ran.returncode, ran.stdout), (0, ""), ran.stderr)

    def test_need_no_other_package_and_run_nothing_at_installation(self):
        for architecture in ARCHITECTURES:
            with self.subTest(architecture=architecture), tempfile.TemporaryDirectory() as directory:
                fields = told("dpkg-deb", "--field", package(architecture))
                self.assertIn(f"Version: {made.VERSION}\n", fields)
                self.assertIn(f"Architecture: {architecture}\n", fields)
                self.assertNotIn("Depends", fields)
                subprocess.run(["dpkg-deb", "--control", package(architecture), directory], check=True)
                self.assertEqual(sorted(os.listdir(directory)), ["control", "md5sums"])

    def test_hold_the_programs_as_they_were_staged(self):
        for architecture, tree in ARCHITECTURES.items():
            with self.subTest(architecture=architecture), tempfile.TemporaryDirectory() as directory:
                subprocess.run(["dpkg-deb", "--extract", package(architecture), directory], check=True)
                for program in made.PROGRAMS:
                    packed = pathlib.Path(directory) / "usr/bin" / program
                    self.assertEqual(packed.read_bytes(), (made.STAGE / tree / "bin" / program).read_bytes())
                    self.assertEqual(packed.stat().st_mode & 0o7777, 0o755)

    def test_have_the_same_bytes_when_made_again(self):
        with tempfile.TemporaryDirectory() as directory:
            for again in made.pack("deb", made.STAGE, pathlib.Path(directory)):
                self.assertEqual(again.read_bytes(), (made.DIST / again.name).read_bytes(), again.name)


@unittest.skipUnless(roots.can_be_made(), "only root can make another root")
class InDebian(unittest.TestCase):
    """Somebody on a minimal Debian."""

    @classmethod
    def setUpClass(cls):
        cls.root = roots.debian(cls)
        cls.architecture = told("dpkg", "--print-architecture").strip()
        with tempfile.TemporaryDirectory() as directory:
            scratch = pathlib.Path(directory)
            made.pack("deb", made.older_stage(scratch / "stage"), scratch, made.OLDER)
            shutil.copy(package(cls.architecture, made.OLDER, scratch), cls.root / "var/tmp/older.deb")
        shutil.copy(package(cls.architecture), cls.root / "var/tmp/quillstead.deb")

    def setUp(self):
        self.user = user.User(self, self.root)
        self.addCleanup(self.dpkg, "--purge", "quillstead")

    def dpkg(self, *words):
        self.user.environment["PATH"] = "/usr/sbin:/usr/bin:/sbin:/bin"
        self.user.run("dpkg", *words)

    def files(self):
        """All that is in the root but dpkg's own notes and the user's home."""
        found = []
        for directory, directories, names in os.walk(self.root):
            inside = pathlib.Path("/") / pathlib.Path(directory).relative_to(self.root)
            directories[:] = [name for name in directories
                              if str(inside / name) not in ("/proc", "/var/lib/dpkg", "/var/log")
                              and not name.startswith("quillstead-user-")]
            found += [str(inside / name) for name in directories + names]
        return sorted(found)

    def test_installs_asks_and_uninstalls(self):
        self.dpkg("--install", "/var/tmp/quillstead.deb")
        user.lives_with(self.user, "/usr/bin/quillstead")

    def test_upgrades_and_keeps_the_settings_working(self):
        self.dpkg("--install", "/var/tmp/older.deb")
        self.assertEqual(self.user.run("quillstead", "--version"), f"quillstead {made.OLDER}\n")
        self.user.run("quillstead", "install")
        self.user.write_card()
        self.dpkg("--install", "/var/tmp/quillstead.deb")
        self.assertEqual(self.user.run("quillstead", "--version"), f"quillstead {made.VERSION}\n")
        self.assertIn("Never order coffee", self.user.ask())
        for name, check in self.user.doctor("quillstead").items():
            self.assertIn(check["status"], ("ok", "skip"), f"{name}: {check}")

    def test_purges_all_that_was_installed(self):
        before = self.files()
        self.dpkg("--install", "/var/tmp/older.deb")
        self.dpkg("--install", "/var/tmp/quillstead.deb")
        self.assertIn("/usr/bin/quillstead-hook", set(self.files()) - set(before))
        self.dpkg("--purge", "quillstead")
        self.assertEqual(self.files(), before)

    def test_puts_texts_where_debian_looks_for_them(self):
        self.dpkg("--install", "/var/tmp/quillstead.deb")
        share = self.root / "usr/share"
        for program in made.PROGRAMS:
            for text in (f"man/man1/{program}.1.gz", f"bash-completion/completions/{program}",
                         f"zsh/vendor-completions/_{program}", f"fish/vendor_completions.d/{program}.fish"):
                with self.subTest(text=text):  # a minimal Debian leaves man pages out
                    self.assertIn(f"/usr/share/{text}", told("dpkg-deb", "--contents", package(self.architecture)))
        self.assertIn("THIRD-PARTY-NOTICES, beside this file", (share / "doc/quillstead/copyright").read_text())
        self.assertIn("SQLite", (share / "doc/quillstead/THIRD-PARTY-NOTICES").read_text())
