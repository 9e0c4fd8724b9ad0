"""The Homebrew formula: its sums, and what it does, told to a stand-in for Homebrew."""

import hashlib
import platform
import re
import shutil
import subprocess
import tempfile
import unittest

import made

FORMULA = made.DIST / "quillstead.rb"
URL = "https://downloads.example.org/quillstead/"

# The few words of Homebrew's language that the formula uses. The first argument names the formula, the
# second the system; then come the tree that was unpacked and the place to install it to.
STAND_IN = r"""
require "fileutils"
require "minitest/assertions"
require "open3"

class Place < String
  def install(names) = names.each { |name| FileUtils.cp_r(name, self) }
end

class Formula
  class << self
    attr_reader :told, :tested
    def note(name, value) = (@told ||= {})[name] = value
    %i[desc version url sha256].each { |name| define_method(name) { |value| note(name, value) } }
    def on_macos = (yield if ARGV[1] == "macos")
    def on_linux = (yield if ARGV[1].start_with?("linux"))
    def on_intel = (yield if ARGV[1].end_with?("x64"))
    def on_arm = (yield if ARGV[1].end_with?("arm64"))
    def test(&steps) = @tested = steps
  end

  include Minitest::Assertions
  attr_accessor :assertions
  def prefix = Place.new(ARGV[3])
  def bin = "#{prefix}/bin"
  def version = self.class.told[:version]
  def shell_output(command) = Open3.capture2(command).first
  def pipe_output(command, input, status)
    output, ended = Open3.capture2(command, stdin_data: input)
    assert_equal status, ended.exitstatus
    output
  end
end

load ARGV[0]
puts Quillstead.told.map { |name, value| "#{name} #{value}" }
if ARGV[2]
  formula = Quillstead.new
  formula.assertions = 0
  Dir.chdir(ARGV[2]) { formula.install }
  formula.instance_exec(&Quillstead.tested)
  puts "assertions #{formula.assertions}"
  puts formula.caveats
end
"""
HERE = f"linux-{ {'x86_64': 'x64', 'aarch64': 'arm64'}[platform.machine()] }"
SYSTEMS = {"macos": "macos-universal", "linux-x64": "linux-x64", "linux-arm64": "linux-arm64"}


def told(formula, system, *places):
    """What the formula says for that system, by name."""
    ended = subprocess.run(["ruby", "-e", STAND_IN, "--", formula, system, *places], check=True,
                           stdout=subprocess.PIPE, text=True)
    return dict(line.split(" ", 1) for line in ended.stdout.splitlines() if " " in line)


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


@unittest.skipUnless(shutil.which("ruby"), "there is no ruby")
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
        with tempfile.TemporaryDirectory() as tree, tempfile.TemporaryDirectory() as prefix:
            subprocess.run(["tar", "-xzf", made.DIST / f"quillstead-{made.VERSION}-{HERE}.tar.gz",
                            "-C", tree, "--strip-components=1"], check=True)
            said = told(FORMULA, HERE, tree, prefix)
        self.assertEqual(said["assertions"], "3")
