#include "support/OS/Directory.h"
#include "support/OS/File.h"
#include "unit/helpers/Files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

namespace quillstead::OS {
namespace {

TEST(FileState, IsOfRegularFilesOnly) {
  const unit::TemporaryDirectory place;
  unit::writeFile(place / "a.md", "four");
  std::filesystem::create_directory(place / "b.md");
  std::filesystem::create_symlink("a.md", place / "c.md");
  const OS::Descriptor directory = OS::openDirectory(place.path(), OS::Links::followed);
  const auto state = OS::stateOf(directory, "a.md");
  ASSERT_TRUE(state);
  EXPECT_EQ(state->stamp.size, 4);
  EXPECT_GT(state->stamp.modified, 1'600'000'000'000'000'000);
  EXPECT_EQ(state->ownership, OS::Ownership::ours);
  std::filesystem::permissions(place / "a.md", std::filesystem::perms::others_write,
                               std::filesystem::perm_options::add);
  EXPECT_EQ(OS::stateOf(directory, "a.md")->ownership, OS::Ownership::everybodys);
  for (const char* const name : {"b.md", "c.md", "none.md"}) {
    EXPECT_FALSE(OS::stateOf(directory, name)) << name;
  }
}

/// The stamp once the last change is old enough; absent when that takes seconds, as on a file
/// system that is not known.
std::optional<std::uint64_t> stampAtRest(const Descriptor& directory) {
  constexpr int mostWaits = 100;
  for (int waits = 0; waits < mostWaits; ++waits) {
    if (const auto stamp = namesStamp(directory)) return stamp;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return std::nullopt;
}

TEST(NamesStamp, IsAbsentWhileTheLastChangeIsRecent) {
  const unit::TemporaryDirectory directory;
  const Descriptor opened = openDirectory(directory.path(), Links::followed);
  bool wasAbsent = false;
  constexpr int mostTries = 100;  // a busy machine may take its time between the two
  for (int tries = 0; tries < mostTries && !wasAbsent; ++tries) {
    unit::writeFile(directory / std::to_string(tries), "");
    wasAbsent = !namesStamp(opened);
  }
  EXPECT_TRUE(wasAbsent);
}

TEST(NamesStamp, ChangesWithTheNamesAndNotWithWhatIsInTheFiles) {
  const unit::TemporaryDirectory directory;
  const Descriptor opened = openDirectory(directory.path(), Links::followed);
  unit::writeFile(directory / "a", "one");
  const auto stamp = stampAtRest(opened);
  if (!stamp) GTEST_SKIP() << "not a file system that is known to keep a directory's time";
  unit::writeFile(directory / "a", "two");
  EXPECT_EQ(stampAtRest(opened), stamp);
  unit::writeFile(directory / "b", "");
  EXPECT_NE(stampAtRest(opened), stamp);
}

}  // namespace
}  // namespace quillstead::OS
