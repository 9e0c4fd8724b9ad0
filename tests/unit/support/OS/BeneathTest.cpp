#include "support/OS/Beneath.h"
#include "support/OS/Directory.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#if defined(__linux__)
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
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

#if defined(__linux__)

/// From now on the system refuses this process one call.
void refuse(long call, int error) {
  std::array<sock_filter, 4> steps{
      sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 1),
      sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error)),
      sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog filter{.len = steps.size(), .filter = steps.data()};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
    unit::print("[no filter] ");
  }
}

/// A directory with a file, and a link out of it.
class BeneathOnLinux : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(place / "top/a");
    unit::writeFile(place / "top/a/file", "text");
    unit::writeFile(place / "secret", "secret");
    fs::create_symlink("../secret", place / "top/out");
  }

  /// What becomes of the file and of the link when the system refuses a call.
  [[nodiscard]] std::string openedWithout(long call, int error) const {
    const OS::Descriptor top = OS::openDirectory(place / "top", OS::Links::followed);
    return unit::inForkedProcess([&] {
             refuse(call, error);
             const bool inside = OS::openBeneath(top, "a/file", O_RDONLY).isOpen();
             const bool outside = OS::openBeneath(top, "out", O_RDONLY).isOpen();
             const bool told = errno == EXDEV;
             unit::print(std::string(inside ? "opened" : "not opened") +
                         (outside || !told ? ", the link too" : ", the link refused"));
           })
        .standardOutput;
  }

  unit::TemporaryDirectory place;
};

TEST_F(BeneathOnLinux, LeavesTheWholePathToTheKernelWhereItCan) {
  if (syscall(SYS_openat2, -1, "", nullptr, 0) < 0 && errno == ENOSYS) {
    GTEST_SKIP() << "this kernel has no openat2";
  }
  EXPECT_EQ(openedWithout(SYS_openat, EACCES), "opened, the link refused");
}

TEST_F(BeneathOnLinux, WalksWhereTheKernelOrAContainerRefusesTheCall) {
  for (const int error : {ENOSYS, EPERM, EAGAIN}) {
    EXPECT_EQ(openedWithout(SYS_openat2, error), "opened, the link refused") << error;
  }
  EXPECT_EQ(openedWithout(SYS_openat2, EACCES), "not opened, the link too");
}

#endif

}  // namespace

}  // namespace quillstead
