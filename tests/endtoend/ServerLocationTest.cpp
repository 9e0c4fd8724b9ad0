#include "HookTest.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quillstead {
namespace {

namespace fs = std::filesystem;

class ServerLocation : public HookTest {
 protected:
  void SetUp() override { server.answer(rulesTool, rulesBlock("R"), rulesMeta); }

  /// A start whose server is `chosen`; the variable is left out when that is absent.
  [[nodiscard]] HookStart startingWith(const std::optional<std::string>& chosen) const {
    HookStart start = starting(harness("codex"), "rules");
    start.environment.erase("QUILLSTEAD_MCP_BIN");
    if (chosen) start.environment["QUILLSTEAD_MCP_BIN"] = *chosen;
    return start;
  }

  /// The path under which the server was started; empty when it was not.
  [[nodiscard]] std::string startedPath(const HookStart& start) const {
    const std::size_t before = server.calls().size();
    EXPECT_EQ(runHook(start, "{}").status, 0);
    const auto& calls = server.calls();
    return calls.size() == before ? "" : calls.back().arguments.at(0);
  }

  /// A link to the scripted server called `name` in the test's directory.
  void placeServer(const std::string& name) const {
    fs::create_directories(fs::path(workspace.path(name)).parent_path());
    fs::create_symlink(childExecutable("ScriptedServer"), workspace.path(name));
  }

  /// A copy of the hook called `name` in the test's directory.
  [[nodiscard]] std::string placeHook(const std::string& name) const {
    fs::create_directories(fs::path(workspace.path(name)).parent_path());
    fs::copy_file(hookExecutable(), workspace.path(name));
    return workspace.path(name);
  }
};

TEST_F(ServerLocation, IsThePathThatTheVariableGives) {
  placeServer("x/my server");
  HookStart start = startingWith(workspace.path("x/my server"));
  EXPECT_EQ(startedPath(start), workspace.path("x/my server"));

  start.directory = workspace.path();
  for (const std::string path : {"x/my server", "./x/my server", "x/../x/my server"}) {
    start.environment["QUILLSTEAD_MCP_BIN"] = path;
    EXPECT_EQ(startedPath(start), path);
  }
}

TEST_F(ServerLocation, IsNotSearchedForWhenTheVariableGivesAPath) {
  placeServer("a/b/server");
  HookStart start = startingWith("b/server");
  start.environment["PATH"] = workspace.path("a");
  EXPECT_EQ(startedPath(start), "");
}

TEST_F(ServerLocation, OfABareNameIsTheFirstHitOnTheSearchPath) {
  placeServer("b/server");
  placeServer("c/server");
  fs::create_directories(workspace.path("directory/server"));
  fs::create_directories(workspace.path("plain"));
  writeFile(workspace.path("plain/server"), "a file that cannot be executed");
  HookStart start = startingWith("server");
  const std::string passedOver =
      workspace.path("none") + ":" + workspace.path("directory") + ":" + workspace.path() + ":";
  start.environment["PATH"] = passedOver + workspace.path("b") + ":" + workspace.path("c");
  EXPECT_EQ(startedPath(start), workspace.path("b/server"));
  start.environment["PATH"] = passedOver + workspace.path("c") + ":" + workspace.path("b");
  EXPECT_EQ(startedPath(start), workspace.path("c/server"));
}

TEST_F(ServerLocation, TakesAnEmptyPieceOfTheSearchPathForTheCurrentDirectory) {
  placeServer("here/server");
  HookStart start = startingWith("server");
  start.directory = workspace.path("here");
  for (const std::string path : {"/a::/b", ":/b", "/a:", ":", "", "/a:.:/b"}) {
    start.environment["PATH"] = path;
    EXPECT_EQ(startedPath(start), "./server") << path;
  }
}

TEST_F(ServerLocation, IsNowhereForABareNameThatIsNotOnTheSearchPath) {
  placeServer("elsewhere/server");
  const HookStart start = startingWith("server");
  EXPECT_EQ(startedPath(start), "");
  EXPECT_EQ(onlyRecord().trail, "slot=rules rules=MISS:no-envelope");
}

TEST_F(ServerLocation, OfABareNameIsNeverTheCurrentDirectoryUnlessThePathSaysSo) {
  placeServer("project/quillstead-mcp");
  HookStart start = startingWith("quillstead-mcp");
  start.directory = workspace.path("project");
  for (const std::string& path : {workspace.path("elsewhere"), std::string("/nonexistent")}) {
    start.environment["PATH"] = path;
    EXPECT_EQ(startedPath(start), "");
    EXPECT_EQ(onlyRecord().trail, "slot=rules rules=MISS:no-envelope");
    forgetLog();
  }
  start.environment["PATH"] = "/nonexistent:";
  EXPECT_EQ(startedPath(start), "./quillstead-mcp");
}

TEST_F(ServerLocation, IsNowhereWhenTheVariableIsEmpty) {
  const std::string hook = placeHook("bin/hook");
  placeServer("bin/quillstead-mcp");
  HookStart start = startingWith("");
  start.executable = hook;
  start.environment["PATH"] = workspace.path("bin");
  start.directory = workspace.path("bin");
  EXPECT_EQ(startedPath(start), "");
}

TEST_F(ServerLocation, OfABareNameHasASearchPathOfItsOwnWithoutOne) {
  // A program that every system has: started, it says nothing; not found, it could not be started.
  HookStart start = startingWith("true");
  start.arguments = {"--harness", "codex", "--slot", "recall"};
  start.environment.erase("PATH");
  runHook(start, R"({"prompt":"x"})");
  EXPECT_EQ(onlyRecord().trail, "slot=recall rules=MISS:no-envelope cards=MISS:no-envelope");

  forgetLog();
  start.environment["PATH"] = "/nonexistent";
  runHook(start, R"({"prompt":"x"})");
  EXPECT_EQ(onlyRecord().trail, "slot=recall rules=MISS:no-envelope cards=MISS:declined");
}

TEST_F(ServerLocation, WithoutTheVariableIsBesideTheHook) {
  HookStart start = startingWith(std::nullopt);
  start.executable = placeHook("bin/hook");
  EXPECT_EQ(startedPath(start), "");

  placeServer("bin/quillstead-mcp");
  EXPECT_EQ(startedPath(start), workspace.path("bin/quillstead-mcp"));
  start.directory = workspace.path("bin");
  EXPECT_EQ(startedPath(start), workspace.path("bin/quillstead-mcp"));
}

TEST_F(ServerLocation, IsBesideTheHookThatALinkLeadsTo) {
  HookStart start = startingWith(std::nullopt);
  const std::string hook = placeHook("opt/q/bin/hook");
  placeServer("opt/q/bin/quillstead-mcp");
  placeServer("usr/bin/quillstead-mcp");
  fs::create_symlink(hook, workspace.path("usr/bin/middle"));
  fs::create_symlink("middle", workspace.path("usr/bin/hook"));
  start.executable = workspace.path("usr/bin/hook");
  EXPECT_EQ(startedPath(start), workspace.path("opt/q/bin/quillstead-mcp"));
}

TEST_F(ServerLocation, WithoutTheVariableHasNothingToDoWithTheSearchPath) {
  placeServer("elsewhere/quillstead-mcp");
  HookStart start = startingWith(std::nullopt);
  start.executable = placeHook("bin/hook");
  start.environment["PATH"] = workspace.path("elsewhere");
  start.directory = workspace.path("elsewhere");
  EXPECT_EQ(startedPath(start), "");
}

TEST_F(ServerLocation, IsFoundFromADirectoryWithALongPath) {
  std::string deep = "bin";
  for (int level = 0; level < 12; ++level) deep += "/" + std::string(100, 'd');
  HookStart start = startingWith(std::nullopt);
  start.executable = placeHook(deep + "/hook");
  placeServer(deep + "/quillstead-mcp");
  EXPECT_EQ(startedPath(start), workspace.path(deep + "/quillstead-mcp"));
}

}  // namespace
}  // namespace quillstead
