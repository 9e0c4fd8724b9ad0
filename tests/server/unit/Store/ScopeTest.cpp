#include "server/Store/Scope.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>

namespace quillstead {

namespace {

namespace fs = std::filesystem;

class ScopeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(directory / "home/.quillstead");
    fs::create_directories(directory / "home/project/.quillstead");
    fs::create_directories(directory / "home/project/deep/er");
    fs::create_directories(directory / "elsewhere");
  }

  [[nodiscard]] std::string home() const { return "HOME=" + directory / "home"; }

  unit::TemporaryDirectory directory;
};

std::string rootOf(const std::optional<Store>& store) { return store ? store->root : "none"; }

TEST_F(ScopeTest, FindsTheProjectInTheNearestDirectoryAbove) {
  const unit::EnvironmentOf environment{home()};
  for (const char* const cwd : {"home/project", "home/project/deep/er", "home/project/deep/er/",
                                "home/project/deep/../deep", "home/project/not/there"}) {
    SCOPED_TRACE(cwd);
    EXPECT_EQ(rootOf(Scope::find(environment, directory / cwd).project),
              directory / "home/project/.quillstead");
  }
}

TEST_F(ScopeTest, LooksForNothingAboveAPathThatNoDirectoryCanHave) {
  std::string cwd = directory / "home/project";
  while (cwd.size() < 5'000) cwd += "/a";
  EXPECT_EQ(rootOf(Scope::find(unit::EnvironmentOf{home()}, cwd).project), "none");
}

TEST_F(ScopeTest, NeverTakesThePersonalStoreForAProject) {
  for (const std::string& chosen : {std::string(), directory / "elsewhere"}) {
    const unit::EnvironmentOf environment{home(), "QUILLSTEAD_HOME=" + chosen};
    EXPECT_EQ(rootOf(Scope::find(environment, directory / "home").project), "none");
    EXPECT_EQ(rootOf(Scope::find(environment, directory / "elsewhere").project), "none");
  }
}

TEST_F(ScopeTest, PutsThePersonalStoreWhereTheEnvironmentSays) {
  const std::string byDefault = directory / "home/.quillstead";
  EXPECT_EQ(rootOf(Scope::find(unit::EnvironmentOf{home()}, "/").personal), byDefault);
  EXPECT_EQ(rootOf(Scope::find(unit::EnvironmentOf{home(), "QUILLSTEAD_HOME="}, "/").personal),
            byDefault);
  const std::string chosen = directory / "chosen";
  const unit::EnvironmentOf choosing{home(), "QUILLSTEAD_HOME=" + chosen};
  EXPECT_EQ(rootOf(Scope::find(choosing, "/").personal), chosen);
}

TEST_F(ScopeTest, AsksTheSystemForTheHomeWhenTheEnvironmentLacksIt) {
  for (const unit::EnvironmentOf& environment :
       {unit::EnvironmentOf{}, unit::EnvironmentOf{"HOME="}}) {
    const std::string root = rootOf(Scope::find(environment, "/").personal);
    EXPECT_TRUE(root == "none" || (root.starts_with('/') && root.ends_with("/.quillstead")));
    EXPECT_NE(root, "/.quillstead");
  }
}

TEST_F(ScopeTest, TakesItsOwnDirectoryWhenNoneIsGiven) {
  const unit::ScopedDirectory here(directory / "home/project/deep");
  const unit::EnvironmentOf environment{home()};
  EXPECT_EQ(rootOf(Scope::find(environment, std::nullopt).project),
            directory / "home/project/.quillstead");
  EXPECT_EQ(rootOf(Scope::find(environment, "er").project), directory / "home/project/.quillstead");
}

TEST_F(ScopeTest, PassesOverAStoreThatIsNoDirectory) {
  fs::create_directories(directory / "home/project/inner");
  unit::writeFile(directory / "home/project/inner/.quillstead", "a file");
  EXPECT_EQ(
      rootOf(Scope::find(unit::EnvironmentOf{home()}, directory / "home/project/inner").project),
      directory / "home/project/.quillstead");
}

TEST_F(ScopeTest, PassesOverAStoreThatSomebodyElsePutAbove) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  constexpr uid_t user = 1000;
  constexpr uid_t stranger = 1001;
  const std::string project = directory / "home/project";
  ASSERT_EQ(chown((project + "/.quillstead").c_str(), stranger, stranger), 0);
  const unit::EnvironmentOf environment{home()};
  EXPECT_EQ(rootOf(Scope::find(environment, project + "/deep").project), "none");

  // A project that is somebody else's altogether is theirs and ours to work on.
  ASSERT_EQ(chown((project + "/deep").c_str(), stranger, stranger), 0);
  EXPECT_EQ(rootOf(Scope::find(environment, project + "/deep").project), project + "/.quillstead");
  ASSERT_EQ(chown((project + "/deep").c_str(), user, user), 0);
  EXPECT_EQ(rootOf(Scope::find(environment, project + "/deep").project), "none");
}

}  // namespace

}  // namespace quillstead
