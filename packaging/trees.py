"""Checks the trees that everything we publish is packed from, and prints every check.

    packaging/trees.py STAGE BUILD VERSION TREE ...

STAGE: the directory of the installed trees, TREE: their names. BUILD: where the presets built the same programs, with their
symbols. Ends with status 1 when a check failed. cmake/toolchains/macos-check has checked those for macOS.
"""

import pathlib
import platform
import re
import shutil
import subprocess
import sys

_root = pathlib.Path(__file__).resolve().parent.parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(_root / "tests/hardening"))
import check as hardening

_programs = ("quillstead", "quillstead-hook", "quillstead-mcp")
_linux = {"linux-x64": "X86-64", "linux-arm64": "AArch64"}
# What a tree must hold beside bin/, so that nothing is lost from the packages unseen.
_files = (
    *(f"share/man/man1/{program}.1" for program in _programs),
    *(f"share/bash-completion/completions/{program}" for program in _programs),
    *(f"share/zsh/site-functions/_{program}" for program in _programs),
    *(f"share/fish/vendor_completions.d/{program}.fish" for program in _programs),
    "share/quillstead/opencode/quillstead.js", "share/quillstead/opencode/package.json",
    "share/doc/quillstead/README.md", "share/doc/quillstead/CHANGELOG.md", "share/doc/quillstead/docs/README.md",
    "share/doc/quillstead/THIRD-PARTY-NOTICES", "share/doc/quillstead/quillstead.spdx.json",
)
# Bytes of a program for Linux: the hook is read from the disk at every prompt.
_limits = {"quillstead-hook": 750_000, "quillstead-mcp": 2_500_000, "quillstead": 4_000_000}


def headers_problems(program, machine):
    """What the file says to the kernel: for this machine, and needing no other file."""
    header = hardening.output("readelf", "-hW", program)
    for name, wanted in (("Type", "EXEC"), ("Machine", machine)):
        if not re.search(rf"^\s*{name}:.*{re.escape(wanted)}", header, re.MULTILINE):
            yield f"{name} is not {wanted}"
    kinds = re.findall(r"^\s{2}(INTERP|DYNAMIC|LOAD)\b", hardening.output("readelf", "-lW", program), re.MULTILINE)
    if "LOAD" not in kinds:
        yield "nothing is loaded"
    yield from (f"not static: {kind}" for kind in kinds if kind != "LOAD")


def symbols_problems(program):
    """Of the program as it was built, with its symbols."""
    symbols = [line.split() for line in hardening.output("readelf", "-sW", program).splitlines()]
    symbols = [parts for parts in symbols if len(parts) >= 8 and parts[0].rstrip(":").isdigit()]
    if not symbols:
        yield "it has no symbols"
    yield from (f"undefined: {parts[7]}" for parts in symbols if parts[6] == "UND" and parts[4] == "GLOBAL")
    names = {parts[7] for parts in symbols if parts[6] != "UND"}
    if "__stack_chk_fail" not in names:
        yield "no stack protector"
    if "sqlite3_open_v2" in names and "usleep" not in names:
        yield "its SQLite waits for other processes in whole seconds"


def content_problems(program, version):
    content = program.read_bytes()
    if f"{program.name} {version}".encode() not in content:
        yield f"it does not say that it is of version {version}"
    for place in (f"{_root}/", f"{pathlib.Path.home()}/"):
        if place.encode() in content:
            yield f"it names a place of the machine that built it: {place}"


def answer(program, tree):
    """What `--version` prints; None where the program cannot run here."""
    runner = []
    if tree == "macos-universal":
        return None
    if tree.removeprefix("linux-") != {"x86_64": "x64", "aarch64": "arm64"}.get(platform.machine()):
        emulator = shutil.which({"linux-arm64": "qemu-aarch64-static", "linux-x64": "qemu-x86_64-static"}[tree])
        if not emulator:
            return None
        runner = [emulator]
    run = subprocess.run([*runner, program, "--version"], stdout=subprocess.PIPE, text=True, check=False)
    return run.stdout.strip()


def version_problems(program, tree, version):
    told = answer(program, tree)
    if told is None:
        print(f"not run here: {tree}/bin/{program.name}")
    elif told != f"{program.name} {version}":
        yield f"it says {told!r}"


def files_of(tree):
    return {str(path.relative_to(tree)): path for path in tree.rglob("*") if path.is_file()}


def layout_problems(stage, names):
    trees = {name: files_of(stage / name) for name in names}
    for name, files in trees.items():
        yield from (f"{name} lacks {file}" for file in (*_files, *(f"bin/{program}" for program in _programs))
                    if file not in files)
        yield from (f"{name} has a program more: {file}" for file in files
                    if file.startswith("bin/") and file.removeprefix("bin/") not in _programs)
        yield from (f"{name}/{file} is empty" for file, path in files.items() if path.stat().st_size == 0)
    first = trees[names[0]]
    for name, files in list(trees.items())[1:]:
        yield from (f"not in both {names[0]} and {name}: {file}" for file in sorted(first.keys() ^ files.keys()))
        yield from (f"{file} is another in {name}" for file in sorted(first.keys() & files.keys())
                    if not file.startswith("bin/") and not file.endswith("THIRD-PARTY-NOTICES")
                    and first[file].read_bytes() != files[file].read_bytes())


def check_linux(stage, build, tree, check):
    for name in _programs:
        program, built = stage / tree / "bin" / name, build / f"publish-{tree}" / "bin" / name
        size = program.stat().st_size
        check(f"{tree}/{name}: for {_linux[tree]}, static", headers_problems(program, _linux[tree]))
        check(f"{tree}/{name}: every symbol defined, stacks protected", symbols_problems(built))
        check(f"{tree}/{name}: read-only after the start, nothing written and run",
              hardening.program_problems(str(built)))
        check(f"{tree}/{name}: {size:,} bytes of {_limits[name]:,}",
              [] if size <= _limits[name] else ["too large"])


def main():
    if len(sys.argv) < 5:
        raise SystemExit(__doc__)
    stage, build, version = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
    trees = sys.argv[4:]
    results = []

    def check(what, problems):
        problems = list(problems)
        results.append(not problems)
        print("ok    " if not problems else "FAILED", what)
        for problem in problems:
            print("      ", problem)

    check("the trees hold what they must, and the same", layout_problems(stage, trees))
    for tree in trees:
        if tree in _linux:
            check_linux(stage, build, tree, check)
        for name in _programs:
            program = stage / tree / "bin" / name
            check(f"{tree}/{name}: of version {version}, names no place of this machine",
                  [*content_problems(program, version), *version_problems(program, tree, version)])
    print(f"{results.count(True)} passed, {results.count(False)} failed")
    sys.exit(0 if all(results) else 1)


if __name__ == "__main__":
    main()
