"""The bill of materials and the checks of a release, on made-up trees."""

import contextlib
import io
import json
import os
import pathlib
import shutil
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "packaging"))
import bill
import trees

_compiler = "compiler/ziglang/lib/"
_fetched = {
    "compiler/ziglang-0.9.8.dist-info/METADATA": "",
    "compiler/ziglang/LICENSE": "the compiler's licence",
    _compiler + "libc/musl/src/internal/version.h": '#define VERSION "1.2.9"\n',
    _compiler + "libc/musl/COPYRIGHT": "musl's licence\n",
    _compiler + "libcxx/include/__config": "#  define _LIBCPP_VERSION 170206\n",
    _compiler + "libcxx/LICENSE.TXT": "libc++'s licence\n",
    _compiler + "libcxxabi/LICENSE.TXT": "libc++abi's licence\n",
    _compiler + "libunwind/LICENSE.TXT": "libunwind's licence\n",
    "sqlite-source/sqlite3_3.1.2-3.dsc": "",
    "sqlite-source/sqlite3_3.1.2.orig.tar.xz": "the source",
    "sqlite-source/source/VERSION": "3.1.2\n",
    "sqlite-source/source/LICENSE.md": "SQLite's blessing\n",
    "utf8proc/utf8proc_2.1.0-1.dsc": "",
    "utf8proc/source/utf8proc.h": "".join(
        f"#define UTF8PROC_VERSION_{part} {number}\n" for part, number in (("MAJOR", 2), ("MINOR", 1), ("PATCH", 0))),
    "utf8proc/source/LICENSE.md": "utf8proc's licence\n",
    "cli11/cli11_2.3.4+ds-1.dsc": "",
    "cli11/source/include/CLI/Version.hpp": '#define CLI11_VERSION "2.3.4"\n',
    "cli11/source/LICENSE": "CLI11's licence\n",
    "tomlplusplus/libtomlplusplus-dev_3.5.6-1_amd64.deb": "a package",
    "tomlplusplus/usr/include/toml++/impl/version.h": "".join(
        f"#define TOML_LIB_{part} {number}\n" for part, number in (("MAJOR", 3), ("MINOR", 5), ("PATCH", 6))),
    "tomlplusplus/usr/share/doc/libtomlplusplus-dev/copyright": "toml++'s licence\n",
}
_programs = ("quillstead", "quillstead-hook", "quillstead-mcp")
_trees = ("linux-x64", "linux-arm64", "macos-universal")


def _write(directory, files):
    for name, text in files.items():
        path = directory / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


class Made(unittest.TestCase):
    """What was fetched, and three trees with all that they must hold."""

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.fetched, self.stage, self.dist = (
            pathlib.Path(directory.name, name) for name in ("fetched", "stage", "dist"))
        _write(self.fetched, _fetched)
        self.dist.mkdir()
        for tree in _trees:
            _write(self.stage / tree, {name: name for name in trees._files})
            _write(self.stage / tree, {f"bin/{name}": f"{tree} {name} 1.2.3" for name in _programs})


class BillTest(Made):
    def document(self, epoch="0"):
        os.environ["SOURCE_DATE_EPOCH"] = epoch
        return bill.bill(self.stage, "1.2.3", bill.libraries(self.fetched), _trees)

    def linked_with(self, program):
        return {relation["relatedSpdxElement"].removeprefix("SPDXRef-")
                for relation in self.document()["relationships"]
                if relation["relationshipType"] == "STATIC_LINK" and relation["spdxElementId"] == f"SPDXRef-{program}"}

    def test_takes_each_version_from_what_was_fetched(self):
        self.assertEqual({library.name: library.version for library in bill.libraries(self.fetched)}, {
            "SQLite": "3.1.2", "utf8proc": "2.1.0", "CLI11": "2.3.4", "toml++": "3.5.6", "musl": "1.2.9",
            "libc++": "17.2.6", "libc++abi": "17.2.6", "libunwind": "17.2.6", "compiler runtime": "0.9.8"})

    def test_names_the_package_that_a_library_came_as(self):
        origins = {library.name: library.origin for library in bill.libraries(self.fetched)}
        self.assertEqual(origins["SQLite"], "pkg:deb/debian/sqlite3@3.1.2-3")
        self.assertEqual(origins["toml++"], "pkg:deb/debian/libtomlplusplus-dev@3.5.6-1")
        self.assertEqual(origins["musl"], "pkg:pypi/ziglang@0.9.8")

    def test_fails_where_no_version_is_found(self):
        _write(self.fetched, {"sqlite-source/source/VERSION": "none\n"})
        with self.assertRaises(SystemExit):
            bill.libraries(self.fetched)

    def test_links_each_program_with_what_is_in_it(self):
        runtime = {"utf8proc", "libc-", "libc-abi", "compiler-runtime"}
        self.assertEqual(self.linked_with("linux-x64-quillstead-hook"), runtime | {"musl", "libunwind"})
        self.assertEqual(self.linked_with("macos-universal-quillstead-mcp"), runtime | {"SQLite"})
        self.assertEqual(self.linked_with("macos-universal-quillstead"), runtime | {"SQLite", "CLI11", "toml-"})

    def test_points_at_nothing_that_it_does_not_describe(self):
        document = self.document()
        known = [one["SPDXID"] for one in [document, *document["packages"], *document["files"]]]
        self.assertEqual(len(known), len(set(known)))
        for relation in document["relationships"]:
            self.assertIn(relation["spdxElementId"], known)
            self.assertIn(relation["relatedSpdxElement"], known)

    def test_gives_the_time_of_the_commit_and_the_sums_of_the_programs(self):
        self.assertEqual(self.document("86400")["creationInfo"]["created"], "1970-01-02T00:00:00Z")
        before = self.document()
        _write(self.stage, {"linux-arm64/bin/quillstead": "another"})
        after = self.document()
        self.assertNotEqual(before["documentNamespace"], after["documentNamespace"])
        self.assertEqual([one["fileName"] for one, other in zip(before["files"], after["files"]) if one != other],
                         ["./linux-arm64/bin/quillstead"])

    def test_puts_bill_and_notices_into_every_tree(self):
        os.environ["SOURCE_DATE_EPOCH"] = "0"
        arguments, sys.argv = sys.argv, ["bill.py", str(self.fetched), str(self.stage), str(self.dist), "1.2.3", *_trees]
        with contextlib.redirect_stdout(io.StringIO()):
            bill.main()
        sys.argv = arguments
        told = json.loads((self.dist / "quillstead-1.2.3.spdx.json").read_text(encoding="utf-8"))
        for tree in _trees:
            documents = self.stage / tree / "share/doc/quillstead"
            self.assertEqual(json.loads((documents / "quillstead.spdx.json").read_text(encoding="utf-8")), told)
            notices = (documents / "THIRD-PARTY-NOTICES").read_text(encoding="utf-8")
            self.assertIn("SQLite's blessing", notices)
            self.assertEqual("musl's licence" in notices, tree.startswith("linux"))


    def test_tells_of_one_tree_alone(self):
        os.environ["SOURCE_DATE_EPOCH"] = "0"
        document = bill.bill(self.stage, "1.2.3", bill.libraries(self.fetched), ["linux-x64"])
        self.assertEqual([one["fileName"] for one in document["files"]],
                         [f"./linux-x64/bin/{name}" for name in _programs])


class CheckTest(Made):
    def test_finds_nothing_wrong_with_trees_that_hold_the_same(self):
        self.assertEqual(list(trees.layout_problems(self.stage, _trees)), [])

    def test_finds_what_a_tree_lacks_or_has_more(self):
        (self.stage / "linux-arm64/share/man/man1/quillstead.1").unlink()
        _write(self.stage, {"macos-universal/bin/other": "x", "linux-x64/share/doc/quillstead/README.md": ""})
        problems = "\n".join(trees.layout_problems(self.stage, _trees))
        self.assertIn("linux-arm64 lacks share/man/man1/quillstead.1", problems)
        self.assertIn("not in both linux-x64 and linux-arm64: share/man/man1/quillstead.1", problems)
        self.assertIn("macos-universal has a program more: bin/other", problems)
        self.assertIn("linux-x64/share/doc/quillstead/README.md is empty", problems)
        self.assertIn("share/doc/quillstead/README.md is another in macos-universal", problems)

    def test_looks_at_no_tree_that_it_was_not_told_of(self):
        shutil.rmtree(self.stage / "linux-arm64")
        self.assertEqual(list(trees.layout_problems(self.stage, ["linux-x64", "macos-universal"])), [])
        self.assertNotEqual(list(trees.layout_problems(self.stage, _trees)), [])

    def test_finds_another_version_and_places_of_the_building_machine(self):
        program = self.stage / "linux-x64/bin/quillstead-hook"
        self.assertEqual(list(trees.content_problems(program, "1.2.3")), [])
        self.assertEqual(len(list(trees.content_problems(program, "1.2.4"))), 1)
        program.write_text(f"quillstead-hook 1.2.3 {trees._root}/src/x.cpp", encoding="utf-8")
        self.assertIn(str(trees._root), next(iter(trees.content_problems(program, "1.2.3"))))

    @unittest.skipUnless(sys.platform == "linux", "readelf")
    def test_finds_a_program_that_needs_others_at_its_start(self):
        problems = " ".join(trees.headers_problems(shutil.which("sh"), "no machine"))
        self.assertIn("not static: DYNAMIC", problems)
        self.assertIn("Machine is not no machine", problems)


if __name__ == "__main__":
    unittest.main()
