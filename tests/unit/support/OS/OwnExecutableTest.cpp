#include "support/OS/CanonicalPath.h"
#include "support/OS/OwnExecutable.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace quillstead::OS
