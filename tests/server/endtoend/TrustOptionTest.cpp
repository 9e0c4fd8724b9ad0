// `quillstead-mcp --trust DIRECTORY`, as a user types it.
#include "server/Store/Scope.h"
#include "server/endtoend/ProgramRun.h"
#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace quillstead::server::test {

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class TrustOption : public ::testing::Test {
 protected:
  void SetUp() override {
    stage.unset("QUILLSTEAD_TRUST");
    stage.write("project/.quillstead/rules.md", "- The project's rule.\n");
  }

  [[nodiscard]] ProgramEnd run(std::vector<std::string> arguments, std::string input = {}) const {
    return ProgramRun({.executable = serverProgram(),
                       .arguments = std::move(arguments),
                       .environment = stage.environment(),
                       .input = std::move(input)})
        .finish();
  }

  /// What the server gives as the rules of the project.
  [[nodiscard]] std::string rules() const {
    const std::string arguments = R"({"cwd":)" + jsonText(stage.project()) + "}";
    const std::string output = run({}, callRequest(2, "rules_get", arguments)).output;
    return answerIn(output.substr(0, output.find('\n'))).text;
  }

  [[nodiscard]] std::string file() const { return stage.path("home/.quillstead/trusted"); }

  static mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
  }

  MemoryStage stage;
};

TEST_F(TrustOption, WritesOneCanonicalLineThatOnlyTheUserMayRead) {
  EXPECT_THAT(rules(), HasSubstr(std::string(projectLeftOutNote)));
  const mode_t before = umask(0);
  const ProgramEnd end = run({"--trust", stage.path("project/../project/.quillstead/..")});
  umask(before);
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(end.output, stage.project() + ": trusted.\n");
  EXPECT_EQ(end.error, "");
  EXPECT_EQ(unit::contentsOf(file()), stage.project() + "\n");
  EXPECT_EQ(modeOf(file()), 0600U);
  EXPECT_EQ(modeOf(stage.path("home/.quillstead")), 0700U);
  EXPECT_THAT(rules(), HasSubstr("The project's rule."));
}

TEST_F(TrustOption, SaysSoWhenTheDirectoryIsTrustedAlready) {
  (void)run({"--trust", stage.project()});
  fs::create_directory_symlink(stage.project(), stage.path("link"));
  const unit::ScopedDirectory here(stage.project());
  for (const std::string& name : {stage.project(), stage.project() + "/", std::string("."),
                                  std::string(".quillstead"), stage.path("link")}) {
    const ProgramEnd end = run({"--trust", name});
    EXPECT_EQ(end.status, 0) << name;
    EXPECT_EQ(end.output, stage.project() + ": is trusted already.\n") << name;
    EXPECT_EQ(unit::contentsOf(file()), stage.project() + "\n") << name;
  }
}

TEST_F(TrustOption, FollowsALinkToTheDirectoryThatIsMeant) {
  fs::create_directory_symlink("project", stage.path("link"));
  EXPECT_EQ(run({"--trust", stage.path("link")}).output, stage.project() + ": trusted.\n");
  EXPECT_EQ(unit::contentsOf(file()), stage.project() + "\n");
}

TEST_F(TrustOption, RefusesWhatIsNoDirectory) {
  stage.write("file", "");
  fs::create_symlink("nowhere", stage.path("dangling"));
  for (const std::string& path :
       {stage.path("file"), stage.path("missing"), stage.path("dangling"), std::string()}) {
    const ProgramEnd end = run({"--trust", path});
    EXPECT_EQ(end.status, 1) << path;
    EXPECT_EQ(end.output, "") << path;
    EXPECT_EQ(end.error, "quillstead-mcp: " + path + " is not a directory\n");
  }
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(TrustOption, NeedsExactlyOneDirectory) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--trust"}, {"--trust", stage.project(), stage.project()}}) {
    const ProgramEnd end = run(arguments);
    EXPECT_EQ(end.status, 2);
    EXPECT_EQ(end.output, "");
    EXPECT_THAT(end.error, HasSubstr("--trust DIRECTORY"));
  }
  EXPECT_FALSE(fs::exists(file()));
}

}  // namespace

}  // namespace quillstead::server::test
