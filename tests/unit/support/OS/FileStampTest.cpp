#include "support/OS/Directory.h"
#include "support/OS/FileStamp.h"
#include "unit/helpers/Files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

namespace quillstead::OS {
namespace {

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
