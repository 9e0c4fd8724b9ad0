"""Other roots to run programs in. Making and entering one needs root."""

import os
import pathlib
import shutil
import stat
import subprocess
import tempfile

_release = "bookworm"


def can_be_made():
    return os.geteuid() == 0


def _mirror():
    """Where this machine gets that release from."""
    told = subprocess.run(["apt-get", "indextargets", "--format", "$(REPO_URI)", "Created-By: Packages",
                           f"Codename: {_release}", "Component: main"], check=True, stdout=subprocess.PIPE, text=True)
    return sorted(told.stdout.split(), key=len)[0]


def fetch_debian():
    """A minimal Debian, made once and kept in the cache. The directory is for copying."""
    base = os.environ.get("XDG_CACHE_HOME") or os.path.expanduser("~/.cache")
    place = pathlib.Path(base) / "quillstead-tests/debian" / _release
    if not (place / ".complete").exists():
        shutil.rmtree(place, ignore_errors=True)
        place.parent.mkdir(parents=True, exist_ok=True)
        with open(f"{place}.log", "wb") as log:
            subprocess.run(["debootstrap", "--variant=minbase", _release, place, _mirror()], check=True,
                           stdout=log, stderr=log)
        (place / ".complete").touch()
    return place


def debian(case):
    """A root of its own with a minimal Debian, which goes away after the test case class."""
    root = _empty(case)
    subprocess.run(["cp", "-a", f"{fetch_debian()}/.", root], check=True)
    _mount_proc(case, root)
    return root


def bare(case):
    """A root that has /proc and /dev/null, and nothing else: no shell, no C library, no settings."""
    root = _empty(case)
    for directory in ("proc", "dev", "tmp"):
        (root / directory).mkdir()
    os.mknod(root / "dev/null", 0o666 | stat.S_IFCHR, os.makedev(1, 3))
    _mount_proc(case, root)
    return root


def _mount_proc(case, root):
    subprocess.run(["mount", "-t", "proc", "proc", root / "proc"], check=True)
    case.addClassCleanup(subprocess.run, ["umount", root / "proc"], check=True)


def _empty(case):
    root = pathlib.Path(tempfile.mkdtemp(prefix="quillstead-root-", dir="/var/tmp"))
    case.addClassCleanup(shutil.rmtree, root)
    return root
