#include "server/Complaint.h"
#include "support/OS/Descriptor.h"
#include "support/Text/Text.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <optional>
#include <string>

namespace quillstead::server {

namespace {

TEST(Complaint, IsOneLineThatIsWrittenOnce) {
  const unit::Captured told(STDERR_FILENO);
  complain("a card\nis\tskipped");
  complain("a card is skipped");
  complain("another");
  EXPECT_EQ(told.text(), "quillstead-mcp: a card is skipped\nquillstead-mcp: another\n");
}

TEST(Complaint, IsCutAtFourKilobytesBetweenCharacters) {
  for (std::size_t before = 0; before < 4; ++before) {
    std::string text(before, 'x');
    while (text.size() < 100'000) text += "\U0001D11E";
    const unit::Captured told(STDERR_FILENO);
    complain(text);
    const std::string line = told.text();
    EXPECT_LE(line.size(), 4'096U);
    EXPECT_GT(line.size(), 4'096U - 4);
    EXPECT_TRUE(line.ends_with("\U0001D11E…\n"));
    EXPECT_EQ(Text::repaired(line), line);
  }
}

TEST(Complaint, NeverWaitsForAReader) {
  const std::optional<OS::Pipe> pipe = OS::makePipe();
  ASSERT_TRUE(pipe);
  const unit::ForkedRun run = unit::inForkedProcess([&] {
    dup2(pipe->writing.number(), STDERR_FILENO);
    for (int number = 0; number < 1'000; ++number) {
      complain(std::to_string(number) + std::string(500, 'x'));
    }
    unit::print("went on");
  });
  EXPECT_EQ(run.standardOutput, "went on");
}

}  // namespace

}  // namespace quillstead::server
