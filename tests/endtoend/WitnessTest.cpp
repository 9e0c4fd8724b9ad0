#include "FullPipe.h"
#include "HookTest.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quillstead {
namespace {

namespace fs = std::filesystem;

class DirectoryWitness : public HookTest {
 protected:
  void SetUp() override { fs::create_directories(workspace.path("project/sub")); }

  /// What the hook, started in `directory`, says to a payload that names `said`.
  [[nodiscard]] std::string errorOf(const Harness& harness, const std::string& directory,
                                    const std::string& said) const {
    HookStart start = starting(harness, "rules");
    start.directory = directory;
    const std::size_t before = server.calls().size();
    const HookEnd end = runHook(start, harness.payload({.directory = said}));
    EXPECT_EQ(end.output, harness.silentOutput());
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(server.calls().at(before).toolArguments(),
                isJSON(harness.rulesArguments({.directory = said}, true)));
    return end.error;
  }

  static std::string warning(const std::string& said, const std::string& own) {
    return "quillstead-hook: WARNING — the harness says cwd=" + said + " but this process is in " +
           own +
           ". Both lanes are scoped by the former; if they name different projects, this prompt "
           "may "
           "have been answered for the wrong one.\n";
  }
};

TEST_F(DirectoryWitness, SaysNothingWhenBothAreTheSame) {
  fs::create_directory_symlink(workspace.path("project"), workspace.path("link"));
  fs::create_directory_symlink("link", workspace.path("second"));
  const std::string project = workspace.path("project");
  const std::vector<std::string> table{
      project,
      project + "/",
      project + "//",
      project + "/.",
      project + "/sub/..",
      workspace.path("link"),
      workspace.path("link/"),
      workspace.path("second"),
      workspace.path() + "//project",
      ".",
  };
  for (const Harness& harness : harnesses()) {
    for (const std::string& said : table) {
      EXPECT_EQ(errorOf(harness, project, said), "") << harness.name << " " << said;
      EXPECT_EQ(errorOf(harness, workspace.path("link"), said), "") << harness.name << " " << said;
    }
  }
}

TEST_F(DirectoryWitness, WarnsInTheseWordsWhenTheyDiffer) {
  fs::create_directory_symlink(workspace.path("project"), workspace.path("link"));
  const std::string project = workspace.path("project");
  const std::vector<std::string> table{
      workspace.path(),           "/",        project + "/sub", "/nonexistent",   "/nonexistent/",
      project + "/../other",      "relative", " " + project,    "/ü 🙂/\"x\"", project + "x",
      workspace.path("link/sub"),
  };
  for (const Harness& harness : harnesses()) {
    for (const std::string& said : table) {
      EXPECT_EQ(errorOf(harness, project, said), warning(said, project)) << harness.name;
      EXPECT_EQ(errorOf(harness, workspace.path("link"), said), warning(said, project));
    }
  }
}

TEST_F(DirectoryWitness, SaysNothingWithoutADirectoryInThePayload) {
  for (const Harness& harness : harnesses()) {
    for (const std::string& slot : promptSlots) {
      EXPECT_EQ(run(harness, slot, harness.payload({})).error, "");
      EXPECT_EQ(run(harness, slot, harness.payload({.directory = "  "})).error, "");
    }
  }
}

TEST_F(DirectoryWitness, WarnsAtEveryPromptSlotAndChangesNothingElse) {
  server.answer(rulesTool, "R", rulesMeta);
  for (const Harness& harness : harnesses()) {
    for (const std::string& slot : promptSlots) {
      HookStart start = starting(harness, slot);
      start.directory = workspace.path("project");
      const HookEnd end = runHook(start, harness.payload({.directory = "/nonexistent"}));
      EXPECT_EQ(end.error, warning("/nonexistent", workspace.path("project")));
      EXPECT_EQ(end.output, run(harness, slot, harness.payload({})).output);
    }
  }
}

TEST_F(DirectoryWitness, HoldsNothingUpWhenNobodyReadsWhatItSays) {
  const FullPipe errors(workspace.path("errors"));
  HookStart start = starting(harness("codex"), "rules");
  start.errorPath = workspace.path("errors");
  server.answer(rulesTool, rulesBlock("R"), rulesMeta);
  const HookEnd end = runHook(
      start, harness("codex").payload({.directory = "/nonexistent/" + std::string(100'000, 'x')}));
  EXPECT_EQ(end.status, 0);
  EXPECT_THAT(end.output, isAnswer(harness("codex").envelope(rulesBlock("R"))));
  EXPECT_EQ(errors.drain().find_first_not_of('.'), std::string::npos);
}

TEST_F(DirectoryWitness, SaysNoMoreThanAPipeTakesAtOnce) {
  const HookEnd end =
      run(harness("codex"), "rules",
          harness("codex").payload({.directory = "/nonexistent/" + std::string(100'000, 'x')}));
  EXPECT_THAT(end.error, ::testing::StartsWith("quillstead-hook: WARNING"));
  EXPECT_EQ(end.error.size(), 4096U);
}

}  // namespace
}  // namespace quillstead
