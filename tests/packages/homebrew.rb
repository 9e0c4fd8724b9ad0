# A stand-in for Homebrew: the few words of its language that the formula uses, and where it puts things.
#
#     ruby homebrew.rb FORMULA SYSTEM [TREE PREFIX]
#
# Prints what the formula says for that system. TREE: an unpacked archive, which goes to PREFIX as Homebrew
# would install it; then the formula's own test is run.
require "fileutils"
require "minitest/assertions"
require "open3"
require "pathname"

class Pathname
  def install(*names)
    mkpath
    names.flatten.each { |name| FileUtils.mv(name, self) }
  end

  def install_symlink(*targets)
    mkpath
    targets.each { |target| File.symlink(target, self/target.basename) }
  end

  def write_env_script(target, variables)
    dirname.mkpath
    words = variables.map { |name, value| %(#{name}="#{value}") }.join(" ")
    write(%(#!/bin/bash\n#{words} exec "#{target}" "$@"\n))
    chmod(0755)
  end
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
  def brew = Pathname.new(ARGV[3])
  def prefix = brew/"Cellar/quillstead"/version
  def bin = prefix/"bin"
  def libexec = prefix/"libexec"
  def opt_libexec = brew/"opt/quillstead/libexec"
  def version = self.class.told[:version]
  def shell_output(command) = Open3.capture2(command).first
  def pipe_output(command, input, status)
    output, ended = Open3.capture2(command, stdin_data: input)
    assert_equal status, ended.exitstatus
    output
  end

  def link
    [brew/"bin", brew/"opt"].each(&:mkpath)
    bin.children.each { |program| FileUtils.ln_sf(program, brew/"bin") }
    FileUtils.rm_f(brew/"opt/quillstead")
    File.symlink(prefix, brew/"opt/quillstead")
  end
end

load ARGV[0]
puts Quillstead.told.map { |name, value| "#{name} #{value}" }
if ARGV[2]
  formula = Quillstead.new
  formula.assertions = 0
  Dir.chdir(ARGV[2]) { formula.install }
  formula.link
  formula.instance_exec(&Quillstead.tested)
  puts "assertions #{formula.assertions}"
  puts formula.caveats
end
