#include "server/Store/Scope.h"
#include "server/Store/StoreFiles.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace quillstead::server {

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
  [[nodiscard]] std::string trust() const { return "QUILLSTEAD_TRUST=" + directory / "home"; }

  unit::TemporaryDirectory directory;
};

/// What is skipped, and why: "path: reason" a line.
std::string skippedIn(const Scope& scope) {
  std::string all;
  for (const SkippedStore& one : scope.skipped) {
    all.append(one.path).append(": ").append(explained(one.why)).append("\n");
  }
  return all;
}

std::string rootOf(const std::optional<Store>& store) { return store ? store->root : "none"; }

TEST_F(ScopeTest, FindsTheProjectInTheNearestDirectoryAbove) {
  const unit::EnvironmentOf environment{home(), trust()};
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
  EXPECT_EQ(rootOf(Scope::find(unit::EnvironmentOf{home(), trust()}, cwd).project), "none");
}

TEST_F(ScopeTest, NeverTakesThePersonalStoreForAProject) {
  for (const std::string& chosen : {std::string(), directory / "elsewhere"}) {
    const unit::EnvironmentOf environment{home(), trust(), "QUILLSTEAD_HOME=" + chosen};
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

TEST_F(ScopeTest, PutsOneSlashBehindAHomeThatEndsInOne) {
  const std::string home = directory / "new";
  for (const std::string& variable :
       {"HOME=" + home + "//", "QUILLSTEAD_HOME=" + home + "/.quillstead/"}) {
    EXPECT_EQ(rootOf(Scope::find(unit::EnvironmentOf{variable}, "/").personal),
              home + "/.quillstead");
  }
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
  const unit::EnvironmentOf environment{home(), trust()};
  EXPECT_EQ(rootOf(Scope::find(environment, std::nullopt).project),
            directory / "home/project/.quillstead");
  EXPECT_EQ(rootOf(Scope::find(environment, "er").project), directory / "home/project/.quillstead");
}

TEST_F(ScopeTest, PassesOverAStoreThatIsNoDirectory) {
  fs::create_directories(directory / "home/project/inner");
  unit::writeFile(directory / "home/project/inner/.quillstead", "a file");
  EXPECT_EQ(
      rootOf(Scope::find(unit::EnvironmentOf{home(), trust()}, directory / "home/project/inner")
                 .project),
      directory / "home/project/.quillstead");
}

TEST_F(ScopeTest, TakesNoRelativePathForTheUsersPlaces) {
  const unit::ScopedDirectory here(directory / "home/project");
  const std::string byDefault = directory / "home/.quillstead";
  for (const char* const chosen :
       {"QUILLSTEAD_HOME=.quillstead", "QUILLSTEAD_HOME=~/.quillstead"}) {
    EXPECT_EQ(rootOf(Scope::find(unit::EnvironmentOf{home(), chosen}, "/").personal), byDefault);
  }
  EXPECT_NE(rootOf(Scope::find(unit::EnvironmentOf{"HOME=."}, "/").personal),
            directory / "home/project/.quillstead");
}

TEST_F(ScopeTest, LeavesOutAProjectThatIsNotTrusted) {
  const Scope scope = Scope::find(unit::EnvironmentOf{home()}, directory / "home/project/deep");
  EXPECT_EQ(rootOf(scope.project), "none");
  EXPECT_TRUE(scope.projectLeftOut);
  EXPECT_FALSE(Scope::find(unit::EnvironmentOf{home()}, directory / "home").projectLeftOut);
  EXPECT_FALSE(
      Scope::find(unit::EnvironmentOf{home(), trust()}, directory / "home/project").projectLeftOut);
}

TEST_F(ScopeTest, DoesNotLookAboveAProjectThatIsLeftOut) {
  fs::create_directories(directory / "home/project/deep/.quillstead");
  const unit::EnvironmentOf environment{home(),
                                        "QUILLSTEAD_TRUST=" + directory / "home/project/deep/er"};
  EXPECT_TRUE(Scope::find(environment, directory / "home/project/deep/er").projectLeftOut);
}

TEST_F(ScopeTest, DoesNotTrustWhereALinkInATrustedDirectoryLeads) {
  fs::create_directories(directory / "elsewhere/stranger/.quillstead");
  fs::create_directory_symlink(directory / "elsewhere/stranger", directory / "home/link");
  const unit::EnvironmentOf environment{home(), trust()};
  for (const char* const cwd : {"home/link", "home/link/.", "home/project/../link"}) {
    const Scope scope = Scope::find(environment, directory / cwd);
    EXPECT_EQ(rootOf(scope.project), "none") << cwd;
    EXPECT_TRUE(scope.projectLeftOut) << cwd;
  }
}

TEST_F(ScopeTest, FollowsAStoreThatIsALinkIntoItsProjectOrIntoTrustedDirectoriesOnly) {
  const std::string project = directory / "home/linked";
  for (const char* const name : {"home/linked/inside", "home/shared", "elsewhere/outside"}) {
    fs::create_directories(directory / name);
  }
  struct Case {
    std::string target;
    std::string trusted;
    std::string root;
  };
  for (const Case& one :
       {Case{"inside", project, project + "/inside"},
        Case{project + "/inside", project, project + "/inside"}, Case{"../shared", project, "none"},
        Case{"../shared", directory / "home", directory / "home/shared"},
        Case{"../shared", project + ":" + directory / "home/shared", directory / "home/shared"},
        Case{directory / "elsewhere/outside", directory / "home", "none"},
        Case{"../linked", project, project}, Case{"..", project, "none"},
        Case{"nowhere", project, "none"}}) {
    SCOPED_TRACE(one.target + " " + one.trusted);
    fs::remove(project + "/.quillstead");
    fs::create_directory_symlink(one.target, project + "/.quillstead");
    const unit::EnvironmentOf environment{home(), "QUILLSTEAD_TRUST=" + one.trusted};
    EXPECT_EQ(rootOf(Scope::find(environment, project).project), one.root);
  }
}

TEST_F(ScopeTest, PassesOverWhatEverybodyMayWrite) {
  const std::string store = directory / "home/project/.quillstead";
  fs::permissions(store, fs::perms::all);
  fs::permissions(directory / "home/.quillstead", fs::perms::all);
  const unit::EnvironmentOf environment{home(), trust()};
  const unit::Captured told(STDERR_FILENO);
  const Scope scope = Scope::find(environment, directory / "home/project");
  EXPECT_EQ(rootOf(scope.project), "none");
  EXPECT_EQ(rootOf(scope.personal), "none");
  EXPECT_EQ(told.text(), "quillstead-mcp: " + directory / "home/.quillstead" +
                             " is skipped: any user can write to it\nquillstead-mcp: " + store +
                             " is skipped: any user can write to it\n");

  fs::permissions(store, fs::perms::all & ~fs::perms::others_write);
  EXPECT_EQ(rootOf(Scope::find(environment, directory / "home/project").project), store);
}

TEST_F(ScopeTest, SaysWhichStoresItSkippedOnItsWayUpAndWhy) {
  const std::string project = directory / "home/project";
  fs::create_directories(project + "/deep/.quillstead");
  fs::permissions(project + "/deep/.quillstead", fs::perms::all);
  fs::create_directory_symlink(directory / "elsewhere", project + "/deep/er/.quillstead");
  const unit::EnvironmentOf environment{home(), trust()};
  const unit::Captured told(STDERR_FILENO);
  const Scope scope = Scope::find(environment, project + "/deep/er");
  EXPECT_EQ(rootOf(scope.project), project + "/.quillstead");
  EXPECT_EQ(skippedIn(scope),
            project + "/deep/er/.quillstead: it is a symbolic link out of the project\n" + project +
                "/deep/.quillstead: any user can write to it\n");
  EXPECT_EQ(skippedIn(Scope::find(environment, project)), "");
}

TEST_F(ScopeTest, HoldsTheStoreThatItFound) {
  unit::writeFile(directory / "home/project/.quillstead/rules.md", "mine");
  const unit::EnvironmentOf environment{home(), trust()};
  const Scope scope = Scope::find(environment, directory / "home/project");
  fs::rename(directory / "home/project/.quillstead", directory / "home/project/before");
  fs::create_directories(directory / "home/project/.quillstead");
  unit::writeFile(directory / "home/project/.quillstead/rules.md", "another's");
  ASSERT_TRUE(scope.project);
  const auto read = StoreFiles::readRules(*scope.project);
  ASSERT_TRUE(std::holds_alternative<StoreFiles::FileText>(read));
  EXPECT_EQ(std::get<StoreFiles::FileText>(read).text, "mine");
}

TEST_F(ScopeTest, PassesOverAStoreThatIsSomebodyElses) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  constexpr uid_t stranger = 1001;
  const std::string project = directory / "home/project";
  const unit::EnvironmentOf environment{home(), trust()};
  ASSERT_EQ(chown((project + "/.quillstead").c_str(), stranger, stranger), 0);
  EXPECT_EQ(rootOf(Scope::find(environment, project + "/deep").project), "none");
  ASSERT_EQ(chown((project + "/deep").c_str(), stranger, stranger), 0);
  EXPECT_EQ(rootOf(Scope::find(environment, project + "/deep").project), "none");

  // Neither a link of somebody else's counts, wherever it leads, nor what one of ours leads to.
  fs::rename(project + "/.quillstead", project + "/theirs");
  fs::create_directories(project + "/ours");
  for (const char* const target : {"ours", "theirs"}) {
    fs::remove(project + "/.quillstead");
    fs::create_directory_symlink(target, project + "/.quillstead");
    const bool isOurs = std::string(target) == "ours";
    if (isOurs) {
      ASSERT_EQ(lchown((project + "/.quillstead").c_str(), stranger, stranger), 0);
    }
    EXPECT_EQ(rootOf(Scope::find(environment, project).project), "none") << target;
  }
}

}  // namespace

}  // namespace quillstead::server
