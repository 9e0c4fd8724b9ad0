#include "cli/UserRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

namespace quillstead::cli {

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  constexpr mode_t permissions = 0777;
  return status.st_mode & permissions;
}

TEST(Init, MakesAPersonalStoreThatHoldsNothingYet) {
  const test::MadeUpHome home;
  const auto end = home.run({"init"});
  EXPECT_EQ(end.status, 0);
  EXPECT_THAT(end.output, HasSubstr(home.path(".quillstead") + ": created"));
  constexpr mode_t onlyForTheUser = 0700;
  EXPECT_EQ(modeOf(home.path(".quillstead")), onlyForTheUser);
  EXPECT_EQ(modeOf(home.path(".quillstead/memory")), onlyForTheUser);
  EXPECT_EQ(modeOf(home.path(".quillstead/rules.md")), mode_t{0600});
  EXPECT_TRUE(fs::is_empty(home.path(".quillstead/memory")));
  const std::string rules = unit::contentsOf(home.path(".quillstead/rules.md"));
  EXPECT_TRUE(rules.starts_with("<!--\n") && rules.ends_with("-->\n")) << rules;
  EXPECT_EQ(rules.find("-->"), rules.size() - 4);
}

TEST(Init, LeavesWhatIsThere) {
  const test::MadeUpHome home;
  home.write(".quillstead/rules.md", "- Mine.\n");
  EXPECT_THAT(home.run({"init"}).output, HasSubstr(": created"));
  const auto end = home.run({"init"});
  EXPECT_EQ(end.status, 0);
  EXPECT_THAT(end.output, HasSubstr("exists already"));
  EXPECT_EQ(unit::contentsOf(home.path(".quillstead/rules.md")), "- Mine.\n");
}

TEST(Init, GoesWhereTheEnvironmentSays) {
  test::MadeUpHome home;
  home.set("QUILLSTEAD_HOME", home.path("a new/place"));
  EXPECT_EQ(home.run({"init"}).status, 0);
  EXPECT_TRUE(fs::is_directory(home.path("a new/place/memory")));
  EXPECT_FALSE(fs::exists(home.path(".quillstead")));
}

TEST(Init, SaysWhenThereIsNoPlace) {
  const test::MadeUpHome home;
  home.write(".quillstead", "a file");
  const auto end = home.run({"init"});
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(end.error, HasSubstr(home.path(".quillstead") + ": cannot be created"));
}

}  // namespace

}  // namespace quillstead::cli
