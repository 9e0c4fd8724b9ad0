#include "support/OS/Directory.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace quillstead {

namespace {

namespace fs = std::filesystem;

TEST(Directory, ListsFilesAgainAndAgainAndLeavesNothingOpen) {
  const unit::TemporaryDirectory place;
  unit::writeFile(place / "a.md", "four");
  unit::writeFile(place / "b.txt", "");
  const OS::Descriptor directory = OS::openDirectory(place.path(), OS::Links::followed);
  const std::vector<int> before = unit::openDescriptors();
  for (int round = 0; round < 3; ++round) {
    std::vector<std::string> names;
    EXPECT_TRUE(
        OS::forEachName(directory, ".md", [&](const char* name) { names.emplace_back(name); }));
    EXPECT_THAT(names, ::testing::ElementsAre("a.md"));
  }
  EXPECT_EQ(unit::openDescriptors(), before);
}

TEST(Directory, IsNotOpenWhenItIsNone) {
  const unit::TemporaryDirectory place;
  unit::writeFile(place / "file", "");
  fs::create_directory(place / "real");
  fs::create_directory_symlink("real", place / "link");
  EXPECT_FALSE(OS::openDirectory(place / "file", OS::Links::followed).isOpen());
  EXPECT_FALSE(OS::openDirectory(place / "none", OS::Links::followed).isOpen());
  EXPECT_TRUE(OS::openDirectory(place / "link", OS::Links::followed).isOpen());
  EXPECT_FALSE(OS::openDirectory(place / "link", OS::Links::refused).isOpen());
  EXPECT_FALSE(OS::forEachName(OS::Descriptor(), "", [](const char*) {}));
}

TEST(Directory, IsMadeWithThoseAbove) {
  const unit::TemporaryDirectory place;
  EXPECT_TRUE(OS::makeDirectories(place / "a/b/c", 0700));
  EXPECT_TRUE(OS::makeDirectories(place / "a/b/c", 0700));
  EXPECT_EQ(fs::status(place / "a").permissions(), fs::perms::owner_all);
  unit::writeFile(place / "file", "");
  EXPECT_FALSE(OS::makeDirectories(place / "file/a", 0700));
}

}  // namespace

}  // namespace quillstead
