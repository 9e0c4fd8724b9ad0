#include "server/LinkedLibraries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

namespace quillstead::server {

namespace {

TEST(LinkedLibraries, AreEachALineWithNameAndVersion) {
  EXPECT_THAT(LinkedLibraries::lines(),
              ::testing::MatchesRegex("SQLite " SQLITE_VERSION "\nutf8proc [0-9.]+\n"
                                      "((glibc|musl) [0-9.]+\n)?lib(std)?c\\+\\+ [0-9.]+\n"
                                      "(GCC|clang) [0-9]+\\.[0-9]+\\.[0-9]+"));
}

}  // namespace

}  // namespace quillstead::server
