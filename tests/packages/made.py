"""What is tested: the installed trees, what was made of them, and the same in an older version."""

import os
import pathlib
import re
import shutil
import subprocess

SOURCE = pathlib.Path(__file__).resolve().parents[2]
STAGE = pathlib.Path(os.environ["QUILLSTEAD_STAGE"])
DIST = pathlib.Path(os.environ["QUILLSTEAD_DIST"])
VERSION = re.search(r"^project\(.* VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text(), re.MULTILINE).group(1)
OLDER = "0.9.0"
TREES = tuple(name for name in ("linux-x64", "linux-arm64", "macos-universal") if (STAGE / name).is_dir())
PROGRAMS = ("quillstead", "quillstead-hook", "quillstead-mcp")


def _time():
    """The time that everything in DIST has, as the head of a Debian package says it."""
    package = next(DIST.glob("*.deb"))
    return package.read_bytes()[24:36].decode().strip()


def pack(kind, stage, dist, version=VERSION):
    """Makes the packages of that kind, and gives their paths."""
    trees = [tree for tree in TREES if kind != "deb" or tree.startswith("linux-")]
    command = [SOURCE / "packaging" / kind / "pack", stage, dist, version, *trees]
    made = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, cwd="/",
                          env={**os.environ, "SOURCE_DATE_EPOCH": _time()})
    return [pathlib.Path(line) for line in made.stdout.splitlines()]


def older_stage(directory):
    """Copies the trees, with programs that say they are older."""
    shutil.copytree(STAGE, directory)
    for program in directory.glob("*/bin/*"):
        content = program.read_bytes()
        assert VERSION.encode() in content, program
        program.write_bytes(content.replace(VERSION.encode(), OLDER.encode()))
    return directory
