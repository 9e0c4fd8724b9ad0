#include "support/OS/HomeDirectory.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace quillstead::OS {
namespace {

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
