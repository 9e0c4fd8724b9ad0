#include "support/OS/CanonicalPath.h"
#include "unit/helpers/Files.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace quillstead::OS
