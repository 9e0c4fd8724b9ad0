"""Says what is linked into the programs: a bill of materials (SPDX 2.3), and the notices that the licences
of the libraries ask for, both put into every tree, and the bill beside the archives too.

    packaging/bill.py FETCHED STAGE DIST VERSION TREE ...

FETCHED: where scripts/lib/cross keeps compiler and sources; everything the bill says is read from there.
STAGE: the directory of the installed trees, TREE: their names. SOURCE_DATE_EPOCH: the time that the bill gives.
"""

import dataclasses
import datetime
import hashlib
import json
import os
import pathlib
import re
import sys

_trees = ("linux-x64", "linux-arm64", "macos-universal")
_linux = _trees[:2]


@dataclasses.dataclass
class Library:
    name: str
    version: str
    licence: str  # as SPDX writes it
    notice: pathlib.Path  # the licence's own text
    origin: str  # a package URL
    sources: list = dataclasses.field(default_factory=list)  # the files it was fetched as
    trees: tuple = _trees  # whose programs hold it


def _found(path, *patterns):
    """What the patterns find in the file, with dots between."""
    text = path.read_text(encoding="utf-8", errors="replace")
    matches = [re.search(pattern, text, re.MULTILINE) for pattern in patterns]
    if not all(matches):
        raise SystemExit(f"{path}: no version in it")
    return ".".join(match.group(1) for match in matches)


def _of_debian(fetched, name, place, version, licence, notice):
    directory = fetched / place
    sources = sorted([*directory.glob("*.tar.*"), *directory.glob("*.deb")])
    package = next(path.stem for path in sorted([*directory.glob("*.dsc"), *directory.glob("*.deb")]))
    binary, revision = package.split("_")[:2]
    return Library(name, version, licence, directory / notice, f"pkg:deb/debian/{binary}@{revision}", sources)


def _of_compiler(fetched, name, place, version, licence, notice, trees=_trees):
    release = next((fetched / "compiler").glob("ziglang-*.dist-info")).name.split("-")[1].removesuffix(".dist")
    directory = fetched / "compiler/ziglang" / place
    return Library(name, version or release, licence, directory / notice, f"pkg:pypi/ziglang@{release}", trees=trees)


def libraries(fetched):
    numbers = ("MAJOR", "MINOR", "PATCH")
    compiler = fetched / "compiler/ziglang/lib"
    musl = _found(compiler / "libc/musl/src/internal/version.h", r'VERSION "([\d.]+)"')
    # 160001 is 16.0.1
    llvm = _found(compiler / "libcxx/include/__config", r"_LIBCPP_VERSION (\d+)\d{4}$",
                  r"_LIBCPP_VERSION \d+0?(\d+)\d\d$", r"_LIBCPP_VERSION \d+0?(\d)$")
    exception = "Apache-2.0 WITH LLVM-exception"
    return [
        _of_debian(fetched, "SQLite", "sqlite-source", _found(fetched / "sqlite-source/source/VERSION", r"^([\d.]+)$"),
                   "blessing", "source/LICENSE.md"),
        _of_debian(fetched, "utf8proc", "utf8proc",
                   _found(fetched / "utf8proc/source/utf8proc.h",
                          *(rf"define UTF8PROC_VERSION_{number} (\d+)" for number in numbers)),
                   "MIT AND Unicode-DFS-2015", "source/LICENSE.md"),
        _of_debian(fetched, "CLI11", "cli11",
                   _found(fetched / "cli11/source/include/CLI/Version.hpp", r'define CLI11_VERSION "([\d.]+)"'),
                   "BSD-3-Clause", "source/LICENSE"),
        _of_debian(fetched, "toml++", "tomlplusplus",
                   _found(fetched / "tomlplusplus/usr/include/toml++/impl/version.h",
                          *(rf"define TOML_LIB_{number}\s+(\d+)" for number in numbers)),
                   "MIT", "usr/share/doc/libtomlplusplus-dev/copyright"),
        _of_compiler(fetched, "musl", "lib/libc/musl", musl, "MIT", "COPYRIGHT", _linux),
        _of_compiler(fetched, "libc++", "lib/libcxx", llvm, exception, "LICENSE.TXT"),
        _of_compiler(fetched, "libc++abi", "lib/libcxxabi", llvm, exception, "LICENSE.TXT"),
        _of_compiler(fetched, "libunwind", "lib/libunwind", llvm, exception, "LICENSE.TXT", _linux),
        _of_compiler(fetched, "compiler runtime", ".", "", "MIT", "LICENSE"),
    ]


def _notices(used):
    told = ["The programs hold the libraries below. These are their licences."]
    for library in used:
        told.append(f"{'=' * 80}\n{library.name} {library.version}\n{'=' * 80}")
        told.append(library.notice.read_text(encoding="utf-8").strip("\n"))
    return "\n\n".join(told) + "\n"


def _identifier(*names):
    return "SPDXRef-" + "-".join(re.sub(r"[^A-Za-z0-9.]+", "-", name) for name in names)


def _sums(path, *kinds):
    return [{"algorithm": kind, "checksumValue": hashlib.new(kind.lower(), path.read_bytes()).hexdigest()}
            for kind in kinds]


def _library_package(library):
    package = {
        "SPDXID": _identifier(library.name), "name": library.name, "versionInfo": library.version,
        "downloadLocation": "NOASSERTION", "filesAnalyzed": False, "licenseConcluded": library.licence,
        "licenseDeclared": library.licence, "copyrightText": "NOASSERTION",
        "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                          "referenceLocator": library.origin}],
    }
    if library.sources:
        package["sourceInfo"] = "; ".join(
            f"{path.name} sha256 {hashlib.sha256(path.read_bytes()).hexdigest()}" for path in library.sources)
    return package


def bill(stage, version, used, trees):
    """The document. A program stands for one file in one tree; it holds the libraries of its tree."""
    files, relations = [], []
    for tree in trees:
        for program in sorted((stage / tree / "bin").iterdir()):
            identifier = _identifier(tree, program.name)
            files.append({"SPDXID": identifier, "fileName": f"./{tree}/bin/{program.name}", "fileTypes": ["BINARY"],
                          "checksums": _sums(program, "SHA1", "SHA256"), "licenseConcluded": "NONE",
                          "copyrightText": "NOASSERTION"})
            relations.append((_identifier("quillstead"), "CONTAINS", identifier))
            relations += [(identifier, "STATIC_LINK", _identifier(library.name)) for library in used
                          if tree in library.trees and program.name in holders(library.name)]
    own = {"SPDXID": _identifier("quillstead"), "name": "quillstead", "versionInfo": version,
           "downloadLocation": "NOASSERTION", "filesAnalyzed": False, "licenseConcluded": "NONE",
           "licenseDeclared": "NONE", "copyrightText": "NOASSERTION"}
    made = datetime.datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]), datetime.timezone.utc)
    content = hashlib.sha256(json.dumps(files).encode()).hexdigest()
    return {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"quillstead-{version}", "documentNamespace": f"urn:quillstead:{version}:{content}",
        "creationInfo": {"created": made.strftime("%Y-%m-%dT%H:%M:%SZ"), "creators": ["Tool: scripts/release"]},
        "packages": [own, *map(_library_package, used)], "files": files,
        "relationships": [{"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
                          for one, kind, other in [("SPDXRef-DOCUMENT", "DESCRIBES", own["SPDXID"]), *relations]],
    }


def holders(library):
    """The programs that hold it: the command all of them, the others what they are made of."""
    if library in ("CLI11", "toml++"):
        return ("quillstead",)
    if library == "SQLite":
        return ("quillstead", "quillstead-mcp")
    return ("quillstead", "quillstead-hook", "quillstead-mcp")


def main():
    if len(sys.argv) < 6:
        raise SystemExit(__doc__)
    fetched, stage, dist = (pathlib.Path(name).resolve() for name in sys.argv[1:4])
    version, trees = sys.argv[4], sys.argv[5:]
    used = libraries(fetched)
    document = json.dumps(bill(stage, version, used, trees), indent=2, ensure_ascii=False) + "\n"
    for tree in trees:
        documents = stage / tree / "share/doc/quillstead"
        here = [library for library in used if tree in library.trees]
        (documents / "THIRD-PARTY-NOTICES").write_text(_notices(here), encoding="utf-8")
        (documents / "quillstead.spdx.json").write_text(document, encoding="utf-8")
    (dist / f"quillstead-{version}.spdx.json").write_text(document, encoding="utf-8")
    print(f"linked in: {', '.join(f'{library.name} {library.version}' for library in used)}")


if __name__ == "__main__":
    main()
