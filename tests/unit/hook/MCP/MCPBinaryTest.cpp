#include "hook/MCP/ChildProcess.h"
#include "hook/MCP/MCPBinary.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Server.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

namespace quillstead::hook::MCPBinary {
namespace {

namespace fs = std::filesystem;

std::string resolved(std::initializer_list<std::string> entries) {
  return resolve(unit::EnvironmentOf(entries));
}

std::string besideThisProgram() { return fs::canonical(unit::child("..")) / "quillstead-mcp"; }

TEST(MCPBinary, ReturnsAnOverrideWithASlashAsItIs) {
  for (const char* path : {"/opt/x/server", "./server", "a/b", "/", "dir/../x y"}) {
    EXPECT_EQ(resolved({std::string("QUILLSTEAD_MCP_BIN=") + path, "PATH=/usr/bin"}), path);
  }
}

TEST(MCPBinary, FindsABareNameOnThePathFirstHitFirst) {
  const unit::TemporaryDirectory directory;
  for (const char* place : {"a", "b"}) fs::create_directory(directory / place);
  unit::writeExecutable(directory / "b/server");
  const std::string path = "PATH=" + (directory / "a") + ":" + (directory / "b");
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=server", path}), directory / "b/server");
  unit::writeExecutable(directory / "a/server");
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=server", path}), directory / "a/server");
}

TEST(MCPBinary, TakesAnEmptyPieceOfThePathForTheCurrentDirectory) {
  const unit::TemporaryDirectory directory;
  const unit::ScopedDirectory here(directory.path());
  for (const char* path : {"/a::/b", ":/a", "/a:", "", ":"}) {
    const std::string entry = std::string("PATH=") + path;
    fs::remove("server");
    EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=server", entry}), "server") << path;
    unit::writeExecutable("server");
    EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=server", entry}), "./server") << path;
  }
}

TEST(MCPBinary, SearchesThePiecesInOrderAlsoTheEmptyOnes) {
  const unit::TemporaryDirectory directory;
  const unit::ScopedDirectory here(directory.path());
  fs::create_directory("bin");
  unit::writeExecutable("bin/server");
  unit::writeExecutable("server");
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=server", "PATH=bin:"}), "bin/server");
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=server", "PATH=:bin"}), "./server");
}

TEST(MCPBinary, PassesOverWhatIsNoExecutableFile) {
  const unit::TemporaryDirectory directory;
  fs::create_directories(directory / "a/server");
  fs::create_directory(directory / "b");
  unit::writeFile(directory / "b/server", "not executable");
  fs::create_directory(directory / "c");
  fs::create_symlink("nowhere", directory / "c/server");
  std::string path =
      "PATH=" + (directory / "a") + ":" + (directory / "b") + ":" + (directory / "c");
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=server", path}), "server");
  fs::create_directory(directory / "d");
  unit::writeExecutable(directory / "d/target");
  fs::create_symlink("target", directory / "d/server");
  path += ":" + (directory / "d");
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=server", path}), directory / "d/server");
}

TEST(MCPBinary, ReturnsTheBareNameWhenThePathDoesNotHaveIt) {
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=no-such-server", "PATH=/usr/bin:/bin"}),
            "no-such-server");
}

TEST(MCPBinary, ReturnsAnEmptyOverrideAsItIs) {
  const unit::TemporaryDirectory directory;
  const unit::ScopedDirectory here(directory.path());
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=", "PATH=/usr/bin::"}), "");
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN="}), "");
}

TEST(MCPBinary, SearchesTheSystemsDirectoriesInOrderWithoutAPath) {
  std::string expected;
  for (const char* place : {"/usr/bin/sh", "/bin/sh"}) {
    if (expected.empty() && access(place, X_OK) == 0) expected = place;
  }
  ASSERT_FALSE(expected.empty());
  EXPECT_EQ(resolved({"QUILLSTEAD_MCP_BIN=sh"}), expected);

  // A program that only the last two directories have.
  for (const char* place : {"/usr/sbin/", "/sbin/"}) {
    for (const char* name : {"ldconfig", "chroot", "mount"}) {
      const std::string program = std::string(place) + name;
      if (access(program.c_str(), X_OK) != 0 ||
          !resolved({std::string("QUILLSTEAD_MCP_BIN=") + name}).ends_with(name))
        continue;
      EXPECT_TRUE(resolved({std::string("QUILLSTEAD_MCP_BIN=") + name}).starts_with("/"))
          << program;
    }
  }
}

TEST(MCPBinary, ExpectsTheServerBesideTheHookWithoutAnOverride) {
  EXPECT_EQ(resolved({}), besideThisProgram());
}

TEST(MCPBinary, LetsThePathPlayNoPartWithoutAnOverride) {
  const unit::TemporaryDirectory directory;
  unit::writeExecutable(directory / "quillstead-mcp");
  EXPECT_EQ(resolved({"PATH=" + directory.path()}), besideThisProgram());
}

TEST(MCPBinary, FindsTheServerBesideTheTargetOfALinkToTheHook) {
  const unit::TemporaryDirectory directory;
  fs::create_directories(directory / "opt/q/bin");
  fs::create_directories(directory / "usr/local/bin");
  fs::copy_file(unit::child("ReportsServerPath"), directory / "opt/q/bin/hook");
  fs::create_symlink(directory / "opt/q/bin/hook", directory / "usr/local/bin/hook");
  const unit::ScopedVariable none("QUILLSTEAD_MCP_BIN", std::nullopt);
  const ChildOutcome outcome = ChildProcess::run({.executable = directory / "usr/local/bin/hook",
                                                  .input = {},
                                                  .leash = unit::ample,
                                                  .firstOutput = {}});
  ASSERT_TRUE(std::holds_alternative<Exited>(outcome));
  EXPECT_EQ(std::get<Exited>(outcome).standardOutput, directory / "opt/q/bin/quillstead-mcp");
}

TEST(MCPBinary, FallsBackToTheProgramsFirstArgumentWhereTheSystemCannotTellTheExecutable) {
#if !defined(__linux__)
  GTEST_SKIP() << "only Linux can be kept from telling the executable";
#endif
  const std::string commandLine = unit::contentsOf("/proc/self/cmdline");
  const fs::path firstArgument(commandLine.c_str());
  const unit::TemporaryDirectory emptyRoot;
  const unit::ForkedRun run = unit::inForkedProcess([&] {
    if (chroot(emptyRoot.path().c_str()) != 0 || chdir("/") != 0) _exit(77);
    unit::print(resolved({}));
  });
  if (run.status == 77) GTEST_SKIP() << "hiding /proc takes the right to change the root";
  EXPECT_EQ(run.standardOutput, firstArgument.parent_path() / "quillstead-mcp");
}

}  // namespace
}  // namespace quillstead::hook::MCPBinary
