#include "support/OS/AtomicFile.h"
#include "support/OS/Directory.h"
#include "unit/helpers/Files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace quillstead {

namespace {

namespace fs = std::filesystem;
using OS::AtomicFile::Outcome;

TEST(AtomicFile, CreatesAFileOnce) {
  const unit::TemporaryDirectory place;
  const OS::Descriptor directory = OS::openDirectory(place.path(), OS::Links::followed);
  EXPECT_EQ(OS::AtomicFile::create(directory, "a", "first"), Outcome::created);
  EXPECT_EQ(OS::AtomicFile::create(directory, "a", "second"), Outcome::exists);
  EXPECT_EQ(unit::contentsOf(place / "a"), "first");
  EXPECT_EQ(std::distance(fs::directory_iterator(place.path()), {}), 1);
}

TEST(AtomicFile, DoesNotFollowALinkInItsPlace) {
  const unit::TemporaryDirectory place;
  fs::create_symlink("target", place / "link");
  const OS::Descriptor directory = OS::openDirectory(place.path(), OS::Links::followed);
  EXPECT_EQ(OS::AtomicFile::create(directory, "link", "x"), Outcome::exists);
  EXPECT_FALSE(fs::exists(place / "target"));
}

TEST(AtomicFile, FailsWithoutATrace) {
  const unit::TemporaryDirectory place;
  const OS::Descriptor directory = OS::openDirectory(place.path(), OS::Links::followed);
  EXPECT_EQ(OS::AtomicFile::create(directory, "none/a", "x"), Outcome::failed);
  EXPECT_EQ(OS::AtomicFile::create(directory, std::string(300, 'x'), "x"), Outcome::failed);
  EXPECT_TRUE(fs::is_empty(place.path()));
  EXPECT_EQ(OS::AtomicFile::create(OS::Descriptor(), "a", "x"), Outcome::failed);
}

TEST(AtomicFile, RemovesOldLeftoversOnly) {
  const unit::TemporaryDirectory place;
  for (const char* const name :
       {".quillstead-new-1-2.tmp", ".quillstead-new-3-4.tmp", "other.tmp"}) {
    unit::writeFile(place / name, "half");
  }
  const auto old = fs::file_time_type::clock::now() - std::chrono::hours(2);
  fs::last_write_time(place / ".quillstead-new-1-2.tmp", old);
  fs::last_write_time(place / "other.tmp", old);
  OS::AtomicFile::removeLeftovers(OS::openDirectory(place.path(), OS::Links::followed));
  EXPECT_FALSE(fs::exists(place / ".quillstead-new-1-2.tmp"));
  EXPECT_TRUE(fs::exists(place / ".quillstead-new-3-4.tmp"));
  EXPECT_TRUE(fs::exists(place / "other.tmp"));
}

}  // namespace

}  // namespace quillstead
