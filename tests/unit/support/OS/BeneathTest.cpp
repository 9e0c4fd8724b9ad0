#include "support/OS/Beneath.h"
#include "support/OS/Directory.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>

namespace quillstead {

namespace {

namespace fs = std::filesystem;
using Open = OS::Descriptor (*)(const OS::Descriptor&, const std::string&, int);

/// Both ways of opening: the system's call, and the walk that stands in for it.
class Beneath : public ::testing::TestWithParam<Open> {
 protected:
  void SetUp() override {
    fs::create_directories(place / "top/a/b");
    unit::writeFile(place / "top/a/b/file", "text");
    unit::writeFile(place / "secret", "secret");
    const auto link = [&](const char* target, const char* name) {
      fs::create_symlink(target, place / name);
    };
    link("a/b", "top/into");
    link("../b/./file", "top/a/b/around");
    link("../../secret", "top/a/out");
    link("../..", "top/a/above");
    link("loop", "top/loop");
    link("..", "top/a/back");
    link("../../top/a", "top/a/outAndIn");
    fs::create_symlink(place / "top/a", place / "top/absolute");
    link("nowhere", "top/dangling");
  }

  /// What is in the file, or the error's name.
  [[nodiscard]] std::string opened(const std::string& path, int flags = O_RDONLY) const {
    const OS::Descriptor top = OS::openDirectory(place / "top", OS::Links::followed);
    const OS::Descriptor file = GetParam()(top, path, flags);
    if (!file.isOpen()) return strerrorname(errno);
    if ((flags & O_DIRECTORY) != 0) return "directory";
    std::array<char, 16> buffer{};
    const OS::Transfer part = OS::read(file.number(), buffer.data(), buffer.size());
    return {buffer.data(), part.count};
  }

  static std::string strerrorname(int error) {
    switch (error) {
      case EXDEV:
        return "EXDEV";
      case ELOOP:
        return "ELOOP";
      case ENOENT:
        return "ENOENT";
      case ENOTDIR:
        return "ENOTDIR";
      default:
        return std::to_string(error);
    }
  }

  unit::TemporaryDirectory place;
};

TEST_P(Beneath, OpensWhatLiesBelow) {
  for (const char* const path : {"a/b/file", "./a//b/./file", "into/file", "a/b/around",
                                 "a/../a/b/file", "a/back/a/b/file"}) {
    EXPECT_EQ(opened(path), "text") << path;
  }
  for (const char* const path : {".", "a", "a/", "into", "into/", "a/back", "a/..", "a/b/../.."}) {
    EXPECT_EQ(opened(path, O_RDONLY | O_DIRECTORY), "directory") << path;
  }
}

TEST_P(Beneath, RefusesEveryWayOut) {
  for (const std::string& path :
       {std::string("../secret"), std::string("a/../../secret"), std::string("a/out"),
        std::string("a/above/secret"), std::string("absolute"), std::string("a/outAndIn"),
        std::string("a/outAndIn/b/file"), std::string("absolute/b/file"), place / "secret",
        std::string("into/../../../secret"), std::string("..")}) {
    EXPECT_EQ(opened(path), "EXDEV") << path;
  }
}

TEST_P(Beneath, SaysWhatElseIsWrong) {
  EXPECT_EQ(opened("loop"), "ELOOP");
  EXPECT_EQ(opened("none"), "ENOENT");
  EXPECT_EQ(opened(""), "ENOENT");
  EXPECT_EQ(opened("dangling"), "ENOENT");
  EXPECT_EQ(opened("a/none/file"), "ENOENT");
  EXPECT_EQ(opened("a/b/file/x"), "ENOTDIR");
  EXPECT_EQ(opened("a/b/file", O_RDONLY | O_DIRECTORY), "ENOTDIR");
  EXPECT_FALSE(GetParam()(OS::Descriptor(), "a", O_RDONLY).isOpen());
}

TEST_P(Beneath, LeavesNothingOpen) {
  const auto before = unit::openDescriptors();
  (void)opened("a/b/around");
  (void)opened("a/b/../../../secret");
  (void)opened("loop");
  EXPECT_EQ(unit::openDescriptors(), before);
}

INSTANTIATE_TEST_SUITE_P(BothWays, Beneath, ::testing::Values(&OS::openBeneath, &OS::walkBeneath),
                         [](const auto& given) {
                           return given.param == &OS::walkBeneath ? "ByWalking" : "ByTheSystem";
                         });

}  // namespace

}  // namespace quillstead
