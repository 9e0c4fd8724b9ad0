// `quillstead trust` and `quillstead init --project`: whose project may speak.
#include "cli/UserRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace quillstead::cli {

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Trust : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(home.path("shop/.git"));
    fs::create_directories(home.path("shop/src/deep"));
    home.write(".quillstead/rules.md", "- Mine.\n");
  }

  /// Runs it in a directory of the home.
  [[nodiscard]] server::test::ProgramEnd runIn(const std::string& directory,
                                               std::vector<std::string> arguments) const {
    const unit::ScopedDirectory there(home.path(directory));
    return home.run(std::move(arguments));
  }

  /// What the agent gets for a prompt in the shop.
  [[nodiscard]] std::string recalled() const { return runIn("shop", {"recall", "x"}).output; }

  test::MadeUpHome home;
};

TEST_F(Trust, IsGivenTakenAndListed) {
  home.write("shop/.quillstead/rules.md", "- The shop's.\n");
  EXPECT_THAT(recalled(), ::testing::Not(HasSubstr("The shop's.")));
  EXPECT_THAT(home.run({"trust", "--list"}).output, IsEmpty());

  auto end = runIn("shop/src/deep", {"trust"});
  EXPECT_EQ(end.status, 0) << end.error;
  EXPECT_EQ(end.output, home.path("shop") + ": trusted\n");
  EXPECT_THAT(recalled(), HasSubstr("The shop's."));
  EXPECT_EQ(home.run({"trust", "--list"}).output, home.path("shop") + "\n");
  EXPECT_THAT(home.run({"trust", home.path("shop")}).output, HasSubstr("was trusted already"));

  end = runIn("shop", {"trust", "--revoke"});
  EXPECT_EQ(end.status, 0) << end.error;
  EXPECT_EQ(end.output, home.path("shop") + ": no longer trusted\n");
  EXPECT_THAT(recalled(), ::testing::Not(HasSubstr("The shop's.")));
  EXPECT_THAT(home.run({"trust", "--revoke", home.path("shop")}).output,
              HasSubstr("was not trusted"));
}

TEST_F(Trust, StaysWhereTheEnvironmentOrADirectoryAboveHasIt) {
  home.write("shop/.quillstead/rules.md", "- The shop's.\n");
  home.set("QUILLSTEAD_TRUST", home.path("shop"));
  EXPECT_THAT(home.run({"trust", "--list"}).output,
              HasSubstr(home.path("shop") + "  (QUILLSTEAD_TRUST)"));
  const auto end = home.run({"trust", "--revoke", home.path("shop")});
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(end.error, HasSubstr("stays trusted, since " + home.path("shop") + " is"));
}

TEST_F(Trust, NeedsAProject) {
  for (const std::string directory : {"shop", ""}) {
    const auto end = runIn(directory, {"trust"});
    EXPECT_EQ(end.status, 1) << directory;
    EXPECT_THAT(end.error, HasSubstr("no project with a .quillstead"));
  }
  EXPECT_EQ(home.run({"trust", home.path("nowhere")}).status, 1);
  EXPECT_EQ(home.run({"trust", "--list", "--revoke"}).status, 2);
}

TEST_F(Trust, ComesWithAProjectStoreOfOnesOwn) {
  const auto end = runIn("shop/src", {"init", "--project"});
  EXPECT_EQ(end.status, 0) << end.error;
  EXPECT_THAT(end.output, HasSubstr(home.path("shop/.quillstead") + ": created"));
  EXPECT_TRUE(fs::is_directory(home.path("shop/.quillstead/memory")));
  home.write("shop/.quillstead/rules.md", "- The shop's.\n");
  EXPECT_THAT(recalled(), HasSubstr("The shop's."));

  const auto nowhere = runIn("", {"init", "--project"});
  EXPECT_EQ(nowhere.status, 1);
  EXPECT_THAT(nowhere.error, HasSubstr("no .git"));
  fs::create_directories(home.path(".git"));
  EXPECT_EQ(runIn("", {"init", "--project"}).status, 1);
  EXPECT_EQ(unit::contentsOf(home.path(".quillstead/rules.md")), "- Mine.\n");
}

}  // namespace

}  // namespace quillstead::cli
