"""The npm packages, as npm and pnpm install them from a registry on loopback."""

import json
import pathlib
import platform
import tarfile
import tempfile
import unittest

import made
import managers
import registry
import user

SYSTEM = f"quillstead-linux-{ {'x86_64': 'x64', 'aarch64': 'arm64'}[platform.machine()] }"
SYSTEMS = {"quillstead-linux-x64": "linux-x64", "quillstead-linux-arm64": "linux-arm64",
           "quillstead-darwin": "macos-universal"}
TREES = {name: tree for name, tree in SYSTEMS.items() if tree in made.TREES}
NAMES = ["quillstead", *TREES]


def package(name, version=made.VERSION, directory=made.DIST):
    return directory / f"{name}-{version}.tgz"


def manifest(name):
    with tarfile.open(package(name)) as archive:
        return json.load(archive.extractfile("package/package.json"))


class Packages(unittest.TestCase):
    def test_are_of_our_version_and_say_that_there_is_no_licence(self):
        for name in NAMES:
            with self.subTest(package=name):
                self.assertEqual(manifest(name)["version"], made.VERSION)
                self.assertEqual(manifest(name)["license"], "UNLICENSED")

    def test_run_nothing_at_installation(self):
        for name in NAMES:
            with self.subTest(package=name):
                self.assertNotIn("scripts", manifest(name))
                self.assertNotIn("dependencies", manifest(name))

    def test_name_those_of_the_systems_in_exactly_their_version(self):
        wanted = manifest("quillstead")["optionalDependencies"]
        self.assertEqual(wanted, dict.fromkeys(SYSTEMS, made.VERSION))

    def test_hold_the_programs_as_they_were_staged(self):
        for name, tree in TREES.items():
            with self.subTest(package=name), tarfile.open(package(name)) as archive:
                for program in made.PROGRAMS:
                    member = archive.getmember(f"package/bin/{program}")
                    self.assertEqual(member.mode, 0o755)
                    staged = (made.STAGE / tree / "bin" / program).read_bytes()
                    self.assertEqual(archive.extractfile(member).read(), staged)

    def test_hold_the_notices_of_what_is_in_the_programs(self):
        for name in TREES:
            with self.subTest(package=name), tarfile.open(package(name)) as archive:
                self.assertIn(b"SQLite", archive.extractfile("package/THIRD-PARTY-NOTICES").read())
                json.load(archive.extractfile("package/quillstead.spdx.json"))

    def test_have_the_same_bytes_when_made_again(self):
        with tempfile.TemporaryDirectory() as directory:
            for again in made.pack("npm", made.STAGE, directory):
                self.assertEqual(again.read_bytes(), (made.DIST / again.name).read_bytes(), again.name)


class Npm:
    programs = "prefix/bin"
    manifests = "prefix/lib/node_modules/**/package.json"
    install = ("npm", "install", "-g", "--loglevel=error")
    remove = ("npm", "uninstall", "-g", "--loglevel=error", "quillstead")


class Pnpm:
    programs = "pnpm/bin"
    manifests = "pnpm/store/v*/links/**/package.json"
    install = (managers.pnpm(), "add", "-g")
    remove = (managers.pnpm(), "remove", "-g", "quillstead")


class Lives:
    """Somebody who has a package manager, and a registry that offers our packages."""

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.scratch.cleanup)
        scratch = pathlib.Path(cls.scratch.name)
        cls.older = made.pack("npm", made.older_stage(scratch / "stage"), scratch / "dist", made.OLDER)

    def setUp(self):
        self.user = user.User(self)
        programs = self.user.home / self.manager.programs
        self.launcher = programs / "quillstead"
        self.user.environment["PATH"] = f"{programs}:/usr/bin:/bin"
        self.user.environment["PNPM_HOME"] = str(self.user.home / "pnpm")
        self.offer([*self.older, *map(package, NAMES)])

    def offer(self, packages):
        offered = registry.Registry(packages)
        self.addCleanup(offered.close)
        (self.user.place / ".npmrc").write_text(f"registry={offered.address}\nprefix={self.user.home}/prefix\n"
                                                "update-notifier=false\naudit=false\nfund=false\n")

    def install(self, version="latest"):
        self.user.run(*self.manager.install, f"quillstead@{version}")

    def native(self, version=made.VERSION):
        """Where the programs for this system are."""
        return next(file.parent / "bin" for file in self.user.place.glob(self.manager.manifests)
                    if json.loads(file.read_text()).items() >= {"name": SYSTEM, "version": version}.items())

    def set_up(self):
        self.user.run(self.launcher, "install")
        self.user.write_card()

    def test_get_the_programs_of_their_system_alone(self):
        self.install()
        names = {json.loads(file.read_text())["name"] for file in self.user.place.glob(self.manager.manifests)
                 if file.is_file()}
        self.assertEqual(names & set(NAMES), {"quillstead", SYSTEM})
        self.assertEqual(self.user.run(self.launcher, "--version"), f"quillstead {made.VERSION}\n")

    def test_install_ask_and_uninstall(self):
        self.install()
        user.lives_with(self.user, self.launcher)

    def test_have_the_programs_themselves_in_their_settings(self):
        self.install()
        self.set_up()
        for command in [[self.user.server()], *self.user.handlers().values()]:
            self.assertEqual(pathlib.Path(command[0]).parent, self.native().resolve())
        self.user.environment["PATH"] = "/nowhere"  # no node either
        self.assertIn("Never order coffee", self.user.ask())

    def test_are_told_which_package_is_missing(self):
        self.offer([package("quillstead")])  # managers pass over an optional one that they do not get
        self.install()
        said = self.user.run(self.launcher, "--version", status=1)
        self.assertIn(f"quillstead: the package {SYSTEM} is missing", said)
        self.assertIn("install quillstead again on this system, with optional dependencies", said)

    def test_upgrade(self):
        self.install(version=made.OLDER)
        self.assertEqual(self.user.run(self.launcher, "--version"), f"quillstead {made.OLDER}\n")
        self.set_up()
        self.install()
        self.assertEqual(self.user.run(self.launcher, "--version"), f"quillstead {made.VERSION}\n")
        self.check_upgraded()
        self.set_up()
        for name, check in self.user.doctor(self.launcher).items():
            self.assertIn(check["status"], ("ok", "skip"), f"{name}: {check}")

    def test_keep_nothing_of_ours_after_removal(self):
        before = self.user.settings()
        self.install()
        self.set_up()
        self.user.run(self.launcher, "uninstall")
        self.user.run(*self.manager.remove)
        self.assertEqual(self.user.settings(), before)
        self.check_removed()


class WithNpm(Lives, unittest.TestCase):
    manager = Npm

    def check_upgraded(self):
        """The paths hold no version, so that the settings go on with the new programs."""
        hook = self.user.handlers()["recall"][0]
        self.assertEqual(self.user.run(hook, "--version"), f"quillstead-hook {made.VERSION}\n")
        self.assertEqual(self.user.doctor(self.launcher)["claude-code.run"]["status"], "ok")

    def check_removed(self):
        prefix = self.user.place / "prefix"
        self.assertEqual([path for path in prefix.rglob("*") if not path.is_dir() or path.is_symlink()], [])

    def test_have_the_man_pages(self):
        self.install()
        for program in made.PROGRAMS:
            self.assertIn(".TH", (self.user.place / f"prefix/share/man/man1/{program}.1").read_text())


class WithPnpm(Lives, unittest.TestCase):
    manager = Pnpm

    def check_upgraded(self):
        """The paths hold the version, so that the settings name the old programs until they are written again."""
        hook = self.user.handlers()["recall"][0]
        self.assertEqual(self.user.run(hook, "--version"), f"quillstead-hook {made.OLDER}\n")
        checks = self.user.doctor(self.launcher)
        self.assertEqual(checks["claude-code.hooks"]["status"], "warn")
        self.assertIn("not up to date", checks["claude-code.hooks"]["summary"])
        self.assertIn(f"version {made.OLDER}, and this is {made.VERSION}", checks["claude-code.run"]["summary"])

    def check_removed(self):
        """What is in pnpm's store stays until `pnpm store prune`."""
        self.assertFalse(self.launcher.exists())
