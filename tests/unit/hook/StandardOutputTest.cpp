#include "hook/FailOpenBelt.h"
#include "hook/StandardOutput.h"
#include "support/OS/Descriptor.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace quillstead::StandardOutput {
namespace {

TEST(StandardOutput, PrintsTheAnswerAndOneLineEnd) {
  const unit::ForkedRun run = unit::inForkedProcess([] { answer(R"({"a":1})"); });
  EXPECT_EQ(run.standardOutput, "{\"a\":1}\n");
}

TEST(StandardOutput, PrintsInOneWrite) {
  std::array<int, 2> ends{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()), 0);  // one message for each write
  const OS::Descriptor reading(ends[0]);
  const OS::Descriptor writing(ends[1]);
  unit::inForkedProcess([&] {
    dup2(writing.number(), STDOUT_FILENO);
    answer("the answer");
  });
  std::array<char, 64> buffer{};
  const OS::Transfer got = OS::read(reading.number(), buffer.data(), buffer.size());
  EXPECT_EQ(std::string_view(buffer.data(), got.count), "the answer\n");
}

TEST(StandardOutput, NotesThatTheAnswerWasPrinted) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    unit::print(FailOpenBelt::answered ? "too early," : "");
    answer("{}");
    unit::print(FailOpenBelt::answered ? "answered" : "not answered");
  });
  EXPECT_EQ(run.standardOutput, "{}\nanswered");
}

TEST(StandardOutput, LetsNoFaultPrintASecondAnswer) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    FailOpenBelt::arm("{}");
    answer("the answer");
    std::raise(SIGSEGV);
    _exit(3);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "the answer\n");
}

TEST(StandardOutput, SurvivesAHarnessThatNoLongerListens) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    std::optional<OS::Pipe> pipe = OS::makePipe();
    pipe->reading.close();
    dup2(pipe->writing.number(), STDOUT_FILENO);
    answer("nobody reads this");
    close(STDOUT_FILENO);
    answer("nor this");
  });
  EXPECT_EQ(run.status, 0);
}

}  // namespace
}  // namespace quillstead::StandardOutput
