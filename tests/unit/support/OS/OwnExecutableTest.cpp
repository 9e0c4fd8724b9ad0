#include "support/OS/CanonicalPath.h"
#include "support/OS/OwnExecutable.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

namespace quillstead::OS {
namespace {

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

}  // namespace
}  // namespace quillstead::OS
