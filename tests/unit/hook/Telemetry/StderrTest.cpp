#include "hook/Telemetry/Stderr.h"
#include "support/OS/Descriptor.h"
#include "support/Text/Text.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

namespace quillstead::hook::Stderr {
namespace {

/// What a reader of standard error gets in one go while `text` is written to it.
std::string firstRead(std::string_view text, int type) {
  std::array<int, 2> ends{};
  EXPECT_EQ(socketpair(AF_UNIX, type, 0, ends.data()), 0);
  const OS::Descriptor reading(ends[0]);
  const OS::Descriptor writing(ends[1]);
  unit::inForkedProcess([&] {
    dup2(writing.number(), STDERR_FILENO);
    line(text);
  });
  std::array<char, 1024> buffer{};
  const OS::Transfer got = OS::read(reading.number(), buffer.data(), buffer.size());
  return {buffer.data(), got.count};
}

TEST(Stderr, WritesThePrefixTheTextAndALineFeedExactly) {
  const unit::Captured captured(STDERR_FILENO);
  line("x");
  line("");
  line("two\nlines \xE2\x80\x94 here");
  EXPECT_EQ(
      captured.text(),
      "quillstead-hook: x\nquillstead-hook: \nquillstead-hook: two\nlines \xE2\x80\x94 here\n");
}

TEST(Stderr, WritesEachRecordAtOnce) {
  EXPECT_EQ(firstRead("a record\nof two lines", SOCK_DGRAM),  // one message for each write
            "quillstead-hook: a record\nof two lines\n");
}

TEST(Stderr, ReplacesWhatIsNotUTF8) {
  const unit::Captured captured(STDERR_FILENO);
  line("a\xFF\xC3z");
  EXPECT_EQ(captured.text(), "quillstead-hook: a\xEF\xBF\xBD\xEF\xBF\xBDz\n");
}

TEST(Stderr, CutsALongRecordAtTheBorderOfACharacter) {
  for (std::size_t before = 0; before < 4; ++before) {
    const std::string text = std::string(before, 'x') + [] {
      std::string clefs;
      while (clefs.size() < 100'000) clefs += "\xF0\x9D\x84\x9E";
      return clefs;
    }();
    const unit::Captured captured(STDERR_FILENO);
    line(text);
    const std::string record = captured.text();
    EXPECT_LE(record.size(), usualLength);
    EXPECT_GT(record.size(), usualLength - 4);
    EXPECT_TRUE(record.ends_with("\x9D\x84\x9E\xE2\x80\xA6\n")) << before;
    EXPECT_EQ(Text::repaired(record), record);
  }
}

TEST(Stderr, LeavesARecordWholeThatJustFits) {
  const std::string_view prefix = "quillstead-hook: ";
  const std::string text(usualLength - prefix.size() - 1, 'x');
  const unit::Captured captured(STDERR_FILENO);
  line(text);
  line(text + "x");
  EXPECT_EQ(captured.text(), std::string(prefix) + text + "\n" + std::string(prefix) +
                                 text.substr(0, text.size() - 3) + "\xE2\x80\xA6\n");
}

TEST(Stderr, NeverWaitsForAReader) {
  std::optional<OS::Pipe> pipe = OS::makePipe();
  const unit::ForkedRun run = unit::inForkedProcess([&] {
    dup2(pipe->writing.number(), STDERR_FILENO);
    for (std::size_t i = 0; i < 1'000; ++i) line(std::string(i, 'x'), 500);
    unit::print("went on");
  });
  EXPECT_EQ(run.standardOutput, "went on");
}

TEST(Stderr, LosesALineThatCannotBeWritten) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    close(STDERR_FILENO);
    line("lost");
    std::optional<OS::Pipe> pipe = OS::makePipe();
    pipe->reading.close();
    dup2(pipe->writing.number(), STDERR_FILENO);
    line("lost too");
    unit::print("went on");
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "went on");
}

}  // namespace
}  // namespace quillstead::hook::Stderr
