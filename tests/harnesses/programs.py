"""The harness programs, installed from npm into a cache outside the build directory."""

import hashlib
import json
import os
import pathlib
import platform
import shutil
import subprocess

_here = pathlib.Path(__file__).parent
_programs = {"claude-code": "@anthropic-ai/claude-code-linux-{processor}/claude",
             "codex": "codex-linux-{processor}/vendor/*/bin/codex",
             "opencode": "opencode-linux-{processor}/bin/opencode"}
_processor = {"x86_64": "x64", "aarch64": "arm64"}.get(platform.machine(), platform.machine())


def _cache():
    base = os.environ.get("XDG_CACHE_HOME") or os.path.expanduser("~/.cache")
    return pathlib.Path(base) / "quillstead-tests" / "harnesses"


def _give_up(why):
    raise SystemExit(f"{why}: the harnesses cannot be installed, so nothing was tested")


def _npm(directory, *arguments):
    if not shutil.which("npm"):
        shutil.rmtree(directory)
        _give_up("npm is missing")
    command = ["npm", *arguments, "--ignore-scripts", "--no-audit", "--no-fund", "--loglevel=error"]
    ended = subprocess.run(command, cwd=directory)
    # The packages are optional ones, each being for one kind of machine: npm also ends well without them.
    lacking = [harness for harness in _programs if not _found(directory / "node_modules", harness)]
    if ended.returncode != 0 or lacking:
        shutil.rmtree(directory)
        _give_up(f"npm did not bring {', '.join(lacking) or 'all'}")


def _newest(package):
    asked = subprocess.run(["npm", "view", package, "version"], stdout=subprocess.PIPE, text=True)
    if asked.returncode != 0:
        _give_up("npm does not tell the newest version")
    return asked.stdout.strip()


def installed(newest=False):
    """The directory of the installed packages. Downloads them when they are not there yet."""
    if newest:
        place = _cache() / "newest"
        shutil.rmtree(place, ignore_errors=True)
        place.mkdir(parents=True)
        codex = _newest("@openai/codex")
        _npm(place, "install", f"@anthropic-ai/claude-code-linux-{_processor}@latest",
             f"codex-linux-{_processor}@npm:@openai/codex@{codex}-linux-{_processor}",
             f"opencode-linux-{_processor}@latest")
        return place / "node_modules"
    lock = _here / "package-lock.json"
    place = _cache() / hashlib.sha256(lock.read_bytes()).hexdigest()[:16]
    if not (place / ".complete").exists():
        shutil.rmtree(place, ignore_errors=True)
        place.mkdir(parents=True)
        for name in ("package.json", "package-lock.json"):
            shutil.copy(_here / name, place)
        _npm(place, "ci")
        (place / ".complete").touch()
    return place / "node_modules"


def _found(packages, harness):
    return next(packages.glob(_programs[harness].format(processor=_processor)), None)


def native(packages, harness):
    """The path of the harness's own program."""
    return str(_found(packages, harness))


def versions(packages):
    """(package, version) of each."""
    manifests = sorted([*packages.glob("*/package.json"), *packages.glob("@*/*/package.json")])
    read = [json.loads(manifest.read_text()) for manifest in manifests]
    return [(manifest.parent.name, each["version"]) for manifest, each in zip(manifests, read)]


def megabytes(packages):
    """The size of all of them on the disk."""
    return int(subprocess.run(["du", "-sm", packages], capture_output=True, text=True,
                              check=True).stdout.split()[0])
