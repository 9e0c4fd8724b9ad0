#include "server/Store/Trust.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace quillstead::server {

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::EndsWith;

class TrustTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(directory / "home/.quillstead");
    fs::create_directories(directory / "work/project/deep");
  }

  [[nodiscard]] unit::EnvironmentOf environment(const std::string& trusted = "") const {
    return {"HOME=" + directory / "home", "QUILLSTEAD_TRUST=" + trusted};
  }

  [[nodiscard]] std::string file() const { return directory / "home/.quillstead/trusted"; }
  [[nodiscard]] std::string project() const { return directory / "work/project"; }

  /// Whether the project is trusted.
  [[nodiscard]] bool isTrusted(const OS::Environment& environment) const {
    return Trust::read(environment).coverOf(project()).has_value();
  }

  static std::string refusalOf(const Trust::Outcome& outcome) {
    const auto* const refused = std::get_if<Trust::Refused>(&outcome);
    return refused ? refused->reason : "[not refused]";
  }

  static std::vector<std::string> directoriesOf(const Trust& trust) {
    std::vector<std::string> all;
    for (const Trust::Entry& entry : trust.entries()) all.push_back(entry.directory);
    return all;
  }

  unit::TemporaryDirectory directory;
};

TEST_F(TrustTest, CoversADirectoryAndWhatLiesBelow) {
  const Trust trust = Trust::read(environment(directory / "work"));
  EXPECT_EQ(trust.coverOf(directory / "work"), directory / "work");
  EXPECT_EQ(trust.coverOf(directory / "work/project/deep"), directory / "work");
  EXPECT_EQ(trust.coverOf(directory / "workshop"), std::nullopt);
  EXPECT_EQ(trust.coverOf(directory.path()), std::nullopt);
  EXPECT_EQ(trust.coverOf(""), std::nullopt);
  EXPECT_EQ(Trust::read(environment("/")).coverOf(project()), "/");
}

TEST_F(TrustTest, IsWhatTheFileSaysLineByLine) {
  for (const std::string& text : {project(), project() + "\n",
                                  "# mine\n\n" + directory / "work" + "\n", project() + "\r\n"}) {
    unit::writeFile(file(), text);
    EXPECT_TRUE(isTrusted(environment())) << text;
  }
  const fs::path work = directory / "work";
  fs::create_directory_symlink(project(), directory / "work/link");
  for (const std::string& text :
       {std::string("\n\n"), std::string("."), std::string(".."), "work/project" + std::string(),
        "#" + project(), project() + "/..", project() + "/", project() + "/deep",
        directory / "work/link", " " + project(), project() + ":" + project()}) {
    unit::writeFile(file(), text + "\n");
    const unit::ScopedDirectory here(directory.path());
    EXPECT_FALSE(isTrusted(environment())) << text;
  }
}

TEST_F(TrustTest, IsWhatTheVariableSaysBetweenColons) {
  for (const std::string& list : {project(), ":" + project() + ":", "/nowhere:" + project(),
                                  project() + "/", directory / "work/project/deep/.."}) {
    EXPECT_TRUE(isTrusted(environment(list))) << list;
  }
  const unit::ScopedDirectory here(project());
  for (const std::string& list :
       {std::string(), std::string(":"), std::string("."), std::string("..:deep/.."),
        std::string("~"), project() + "/none"}) {
    EXPECT_FALSE(isTrusted(environment(list))) << list;
  }
}

TEST_F(TrustTest, IsAddedOnceAndRevoked) {
  const auto added = Trust::add(environment(), directory / "work/project/deep/..");
  ASSERT_TRUE(std::holds_alternative<Trust::Changed>(added));
  EXPECT_EQ(std::get<Trust::Changed>(added).directory, project());
  EXPECT_FALSE(std::get<Trust::Changed>(added).wasSo);
  EXPECT_EQ(unit::contentsOf(file()), project() + "\n");
  EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);

  EXPECT_TRUE(std::get<Trust::Changed>(Trust::add(environment(), project() + "/")).wasSo);
  (void)Trust::add(environment(), directory / "work");
  EXPECT_THAT(directoriesOf(Trust::read(environment())),
              ElementsAre(project(), directory / "work"));

  EXPECT_FALSE(std::get<Trust::Changed>(Trust::revoke(environment(), directory / "work")).wasSo);
  EXPECT_TRUE(std::get<Trust::Changed>(Trust::revoke(environment(), directory / "work")).wasSo);
  fs::remove_all(project());
  EXPECT_FALSE(std::get<Trust::Changed>(Trust::revoke(environment(), project())).wasSo);
  EXPECT_EQ(unit::contentsOf(file()), "");
}

TEST_F(TrustTest, KeepsTheLinesThatOthersWrote) {
  unit::writeFile(file(), "# mine\nx\n/a/b");
  (void)Trust::add(environment(), project());
  EXPECT_EQ(unit::contentsOf(file()), "# mine\nx\n/a/b\n" + project() + "\n");
  (void)Trust::revoke(environment(), "/a/b");
  EXPECT_EQ(unit::contentsOf(file()), "# mine\nx\n" + project() + "\n");
}

TEST_F(TrustTest, MakesThePersonalDirectoryForTheUserOnly) {
  fs::remove(directory / "home/.quillstead");
  EXPECT_TRUE(Trust::read(environment()).entries().empty());
  EXPECT_TRUE(std::get<Trust::Changed>(Trust::revoke(environment(), project())).wasSo);
  EXPECT_FALSE(fs::exists(directory / "home/.quillstead"));
  (void)Trust::add(environment(), project());
  EXPECT_EQ(fs::status(directory / "home/.quillstead").permissions(), fs::perms::owner_all);
  EXPECT_TRUE(isTrusted(environment()));
}

TEST_F(TrustTest, TakesAStoresNameForItsProject) {
  fs::create_directories(project() + "/.quillstead");
  (void)Trust::add(environment(), project() + "/.quillstead");
  EXPECT_EQ(unit::contentsOf(file()), project() + "\n");
}

TEST_F(TrustTest, RefusesWhatCannotBeALine) {
  unit::writeFile(directory / "work/file", "");
  fs::create_directories(directory / "work/a\nb");
  EXPECT_THAT(refusalOf(Trust::add(environment(), directory / "work/none")),
              EndsWith("is not a directory"));
  EXPECT_THAT(refusalOf(Trust::add(environment(), directory / "work/file")),
              EndsWith("is not a directory"));
  EXPECT_THAT(refusalOf(Trust::add(environment(), directory / "work/a\nb")),
              EndsWith("cannot be a line of a file"));
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(TrustTest, IsNotWhatAFileSaysThatOthersMayHaveWritten) {
  unit::writeFile(file(), project() + "\n");
  const auto expectNobodysWord = [&] {
    EXPECT_FALSE(isTrusted(environment()));
    EXPECT_NE(refusalOf(Trust::add(environment(), directory / "home")), "[not refused]");
    EXPECT_TRUE(isTrusted(environment(project())));
  };
  fs::permissions(file(), fs::perms::others_write, fs::perm_options::add);
  expectNobodysWord();
  fs::permissions(file(), fs::perms::others_write, fs::perm_options::remove);
  fs::permissions(file(), fs::perms::group_write, fs::perm_options::add);
  EXPECT_TRUE(isTrusted(environment()));

  fs::permissions(directory / "home/.quillstead", fs::perms::others_write, fs::perm_options::add);
  expectNobodysWord();
  fs::permissions(directory / "home/.quillstead", fs::perms::owner_all);

  fs::rename(file(), directory / "work/list");
  fs::create_symlink(directory / "work/list", file());
  expectNobodysWord();
  fs::remove(file());
  mkfifo(file().c_str(), 0600);
  expectNobodysWord();
}

TEST_F(TrustTest, IsNotWhatAFileSaysThatIsSomebodyElses) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  constexpr uid_t stranger = 1001;
  unit::writeFile(file(), project() + "\n");
  ASSERT_EQ(chown(file().c_str(), stranger, stranger), 0);
  EXPECT_FALSE(isTrusted(environment()));
  ASSERT_EQ(chown(file().c_str(), 0, 0), 0);
  EXPECT_TRUE(isTrusted(environment()));
  ASSERT_EQ(chown((directory / "home/.quillstead").c_str(), stranger, stranger), 0);
  EXPECT_FALSE(isTrusted(environment()));
}

TEST_F(TrustTest, IsNotWhatAFileInAProjectSays) {
  for (const char* const store : {"work/project/.quillstead/personal", "work/project/deep/home"}) {
    fs::create_directories(project() + "/.quillstead");
    fs::create_directories(directory / store);
    unit::writeFile(directory / store + "/trusted", project() + "\n");
    const unit::EnvironmentOf chosen{"HOME=" + directory / "home",
                                     "QUILLSTEAD_HOME=" + directory / store};
    EXPECT_FALSE(isTrusted(chosen)) << store;
    EXPECT_THAT(refusalOf(Trust::add(chosen, project())), EndsWith("lies in a project")) << store;
  }
  fs::create_directories(project() + "/home/.quillstead");
  unit::writeFile(project() + "/home/.quillstead/trusted", project() + "\n");
  EXPECT_FALSE(isTrusted(unit::EnvironmentOf{"HOME=" + project() + "/home"}));

  // Not even when the project is nothing but a link.
  fs::rename(project() + "/.quillstead", project() + "/hidden");
  fs::create_directory_symlink("hidden", project() + "/.quillstead");
  EXPECT_FALSE(isTrusted(unit::EnvironmentOf{"HOME=" + project() + "/home"}));

  // A personal directory elsewhere below home is in no project because of ~/.quillstead.
  fs::create_directories(directory / "home/data/memory");
  unit::writeFile(directory / "home/data/memory/trusted", project() + "\n");
  EXPECT_TRUE(isTrusted(unit::EnvironmentOf{"HOME=" + directory / "home",
                                            "QUILLSTEAD_HOME=" + directory / "home/data/memory"}));
}

TEST_F(TrustTest, LosesNothingWhenManyAddAtOnce) {
  constexpr int many = 24;
  std::vector<pid_t> processes;
  for (int number = 0; number < many; ++number) {
    const std::string place = directory / ("work/" + std::to_string(number));
    fs::create_directories(place);
    const pid_t process = fork();
    if (process == 0) {
      _exit(std::holds_alternative<Trust::Changed>(Trust::add(environment(), place)) ? 0 : 1);
    }
    processes.push_back(process);
  }
  for (const pid_t process : processes) {
    int status = -1;
    waitpid(process, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(Trust::read(environment()).entries().size(), many);
  EXPECT_EQ(std::distance(fs::directory_iterator(directory / "home/.quillstead"), {}), 1);
}

}  // namespace

}  // namespace quillstead::server
