#include "support/OS/Paths.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <climits>
#include <filesystem>

namespace quillstead::OS {
namespace {

TEST(CanonicalPath, FollowsLinksAndDropsWhatAddsNothing) {
  const unit::TemporaryDirectory directory;
  std::filesystem::create_directories(directory / "real/inner");
  std::filesystem::create_symlink("real", directory / "link");
  const std::string expected = directory / "real/inner";
  for (const char* path : {"real/inner", "link/inner", "real//inner/", "link/./inner/../inner/."}) {
    EXPECT_EQ(canonicalPath(directory / path), expected) << path;
  }
}

TEST(CanonicalPath, TakesARelativePathFromTheCurrentDirectory) {
  const unit::TemporaryDirectory directory;
  const unit::ScopedDirectory here(directory.path());
  unit::writeFile("file", "");
  EXPECT_EQ(canonicalPath("file"), directory / "file");
  EXPECT_EQ(canonicalPath("."), directory.path());
}

TEST(CanonicalPath, IsAbsentForWhatIsNotThere) {
  const unit::TemporaryDirectory directory;
  std::filesystem::create_symlink("nothing", directory / "dangling");
  std::filesystem::create_symlink("loop", directory / "loop");
  for (const char* path : {"nothing", "dangling", "loop", "nothing/.."}) {
    EXPECT_EQ(canonicalPath(directory / path), std::nullopt) << path;
  }
  EXPECT_EQ(canonicalPath(""), std::nullopt);
  EXPECT_EQ(canonicalPath(std::string(PATH_MAX + 1, 'a')), std::nullopt);
}

TEST(CanonicalPath, IsAbsentForAPathWithANulInIt) {
  const unit::TemporaryDirectory directory;
  EXPECT_EQ(canonicalPath(directory.path() + std::string("\0x", 2)), std::nullopt);
}

TEST(OwnExecutable, IsTheProgramThatRuns) {
  const std::optional<std::string> path = ownExecutable();
  ASSERT_TRUE(path);
  EXPECT_EQ(std::filesystem::path(*path).filename(), "quillstead-unit-tests");
  EXPECT_TRUE(canonicalPath(*path));
  EXPECT_EQ(path->front(), '/');
}

TEST(OwnExecutable, IsTheFirstArgumentWhereTheSystemCannotTell) {
#if !defined(__linux__)
  GTEST_SKIP() << "only Linux can be kept from telling";
#endif
  const std::string commandLine = unit::contentsOf("/proc/self/cmdline");
  const unit::TemporaryDirectory emptyRoot;
  const unit::ForkedRun run = unit::inForkedProcess([&] {
    if (chroot(emptyRoot.path().c_str()) != 0) _exit(77);
    unit::print(ownExecutable().value_or("absent"));
  });
  if (run.status == 77) GTEST_SKIP() << "hiding /proc takes the right to change the root";
  EXPECT_EQ(run.standardOutput, commandLine.c_str());
}

TEST(HomeDirectory, IsTheOneInTheUserDatabase) {
  const passwd* const entry = getpwuid(getuid());
  if (!entry) GTEST_SKIP() << "this user is not in the user database";
  EXPECT_EQ(homeDirectory(), entry->pw_dir);
}

TEST(HomeDirectory, DoesNotComeFromTheEnvironment) {
  const std::string before = homeDirectory();
  const unit::ScopedVariable home("HOME", "/somewhere/else");
  EXPECT_EQ(homeDirectory(), before);
}

TEST(HomeDirectory, IsEmptyForAUserThatTheDatabaseDoesNotKnow) {
  if (getuid() != 0) GTEST_SKIP() << "only root can become another user";
  const unit::ForkedRun run = unit::inForkedProcess([] {
    if (setuid(3'999'999) == 0) unit::print("[" + homeDirectory() + "]");
  });
  EXPECT_EQ(run.standardOutput, "[]");
}

}  // namespace
}  // namespace quillstead::OS
