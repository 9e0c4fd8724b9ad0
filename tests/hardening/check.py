"""Fails when a program or a library of ours was built without what cmake/Hardening.cmake asks for.

    check.py program FILE     a program: what its headers say to the kernel
    check.py library FILE [musl]
                              a library: what the compiler put into our own code, since a static program
                              holds the C library's too. musl has no functions that check lengths
"""

import os
import re
import subprocess
import sys


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout


def headers(program, kind):
    """The flags and the range of addresses of each program header of one kind."""
    found = []
    for line in output("readelf", "-lW", program).splitlines():
        if line.split()[:1] == [kind]:
            _, _, start, _, _, size, *flags, _ = line.split()
            found.append(("".join(flags), int(start, 16), int(start, 16) + int(size, 16)))
    return found


def sections(program):
    """Where each section lies, by name."""
    line = re.compile(r"\s*\[\s*\d+\] (\S+)\s+\S+\s+([0-9a-f]{16})", re.MULTILINE)
    return {name: int(start, 16) for name, start in line.findall(output("readelf", "-SW", program))}


# Whose code a program must not hold, as the compiler writes the namespaces: what starts at every prompt
# stays small.
OTHERS = {"quillstead-hook": ("6server", "3cli"), "quillstead-mcp": ("3cli",), "quillstead": ()}


def foreign_code(program):
    symbols = output("readelf", "-sW", program)
    if "N10quillstead" not in symbols:
        yield "no name of ours is to be seen"
    for namespace in OTHERS[os.path.basename(program)]:
        count = len(re.findall("10quillstead" + namespace, symbols))
        if count:
            yield f"{count} names of the namespace {namespace.strip('0123456789')} are in it"


def program_problems(program):
    yield from foreign_code(program)
    loaded, stack, read_only = (headers(program, kind) for kind in ("LOAD", "GNU_STACK", "GNU_RELRO"))
    if not loaded:
        yield "readelf finds nothing that is loaded"
    if [flags for flags, _, _ in stack] != ["RW"]:
        yield f"the stack: {stack}"
    if any("W" in flags and "E" in flags for flags, _, _ in loaded):
        yield f"something is written and executed: {loaded}"
    if len(read_only) != 1:
        yield "nothing is made read-only after the start"
        return
    places = sections(program)
    _, start, end = read_only[0]
    # Nothing of ours runs before main where the C++ library has nothing either.
    tables = (".got", ".data.rel.ro", *([".init_array"] if ".init_array" in places else []))
    for table in tables:
        if table not in places or not start <= places[table] < end:
            yield f"{table} stays writable"
    if ".got.plt" in places:
        yield "addresses of functions stay writable: .got.plt"


def library_problems(library, c_library=""):
    symbols = output("readelf", "-sW", library)
    is_musl = c_library == "musl"
    for name, mark in (("stack protector", "__stack_chk_fail"),
                       ("assertions of the C++ library",
                        "__libcpp_verbose_abort" if is_musl else "__glibcxx_assert_fail")):
        if mark not in symbols:
            yield f"no {name}: {mark} is not called"
    if not is_musl and holds_one_of(library, "support") and "__realpath_chk" not in symbols:
        yield "not fortified: __realpath_chk is not called"
    probe = r"\bsub +\$0x1000,%rsp\n.*\bmovq? +\$0x0,\(%rsp\)" if is_musl else r"\bor[ql]? +\$0x0,\(%rsp\)"
    if (holds_one_of(library, "support", "hook")
            and not re.search(probe, output("objdump", "-d", "--no-show-raw-insn", library))):
        yield "large frames are not probed"


def holds_one_of(library, *names):
    """Not every library has a frame of more than a page, or calls what can be fortified."""
    return any(f"libquillstead_{name}." in library for name in names)


if __name__ == "__main__":
    check = {"program": program_problems, "library": library_problems}[sys.argv[1]]
    problems = list(check(*sys.argv[2:]))
    for problem in problems:
        print(f"{sys.argv[2]}: {problem}")
    sys.exit(1 if problems else 0)
