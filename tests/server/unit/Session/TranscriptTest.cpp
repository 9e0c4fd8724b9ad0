#include "server/Session/Transcript.h"
#include "unit/helpers/Files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <string_view>

namespace quillstead::server {

namespace {

constexpr std::string_view ordinary = "{\"type\":\"user\",\"message\":\"hello\"}\n";

TEST(Transcript, TellsACompactionByTheMarkThatTheHarnessWrites) {
  const unit::TemporaryDirectory directory;
  const std::string path = directory / "t.jsonl";
  for (const std::string_view mark :
       {"{\"type\":\"system\",\"subtype\":\"compact_boundary\",\"content\":\"x\"}\n",
        "{\"type\":\"user\",\"isCompactSummary\":true}\n",
        "{\"timestamp\":\"t\",\"type\":\"compacted\",\"payload\":{}}\n"}) {
    const std::string text = std::string(ordinary) + std::string(mark) + std::string(ordinary);
    unit::writeFile(path, text);
    const auto change = Transcript::changeSince(path, ordinary.size());
    EXPECT_TRUE(change.newContext) << mark;
    EXPECT_EQ(change.read, text.size());
    EXPECT_FALSE(Transcript::changeSince(path, change.read).newContext) << "seen before";
    EXPECT_FALSE(Transcript::changeSince(path, text.size() - ordinary.size()).newContext);
  }
}

TEST(Transcript, IsNotMisledByWhatSomebodySays) {
  const unit::TemporaryDirectory directory;
  const std::string path = directory / "t.jsonl";
  unit::writeFile(path,
                  "{\"message\":\"\\\"subtype\\\":\\\"compact_boundary\\\"\"}\n"
                  "{\"message\":\"\\\"type\\\":\\\"compacted\\\"\"}\n"
                  "{\"type\":\"user\",\"isCompactSummary\":false}\n");
  EXPECT_FALSE(Transcript::changeSince(path, 0).newContext);
}

TEST(Transcript, WaitsForTheEndOfALine) {
  const unit::TemporaryDirectory directory;
  const std::string path = directory / "t.jsonl";
  const std::string mark = R"({"type":"compacted"})";
  unit::writeFile(path, std::string(ordinary) + mark);
  const auto change = Transcript::changeSince(path, 0);
  EXPECT_FALSE(change.newContext);
  EXPECT_EQ(change.read, ordinary.size());
  unit::writeFile(path, std::string(ordinary) + mark + "\n");
  EXPECT_TRUE(Transcript::changeSince(path, change.read).newContext);
}

TEST(Transcript, CountsOneThatShrankOrGrewTooMuchAsANewContext) {
  const unit::TemporaryDirectory directory;
  const std::string path = directory / "t.jsonl";
  unit::writeFile(path, ordinary);
  EXPECT_TRUE(Transcript::changeSince(path, ordinary.size() + 1).newContext);
  EXPECT_FALSE(Transcript::changeSince(path, ordinary.size()).newContext);
  unit::writeFile(path, std::string(17'000'000, '\n'));
  EXPECT_TRUE(Transcript::changeSince(path, 0).newContext);
  EXPECT_EQ(Transcript::changeSince(path, 0).read, 17'000'000U);
  EXPECT_FALSE(Transcript::changeSince(path, 16'999'000).newContext);
}

TEST(Transcript, TakesWhatCannotBeReadForUnchanged) {
  const unit::TemporaryDirectory directory;
  const std::string pipe = directory / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path : {std::string(), directory / "missing", directory.path(), pipe}) {
    const auto change = Transcript::changeSince(path, 7);
    EXPECT_FALSE(change.newContext) << path;
    EXPECT_EQ(change.read, 7U) << path;
    EXPECT_EQ(Transcript::length(path), 0U) << path;
  }
}

}  // namespace

}  // namespace quillstead::server
