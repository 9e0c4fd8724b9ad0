#include "hook/StandardInput.h"
#include "support/OS/Descriptor.h"
#include "unit/helpers/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace quillstead::hook::StandardInput {
namespace {

/// What is read when a process writes `pieces` to standard input with pauses between them.
std::string readFromPieces(const std::vector<std::string>& pieces) {
  return unit::inForkedProcess([&] {
           std::optional<OS::Pipe> pipe = OS::makePipe();
           dup2(pipe->reading.number(), STDIN_FILENO);
           if (fork() == 0) {
             for (const std::string& piece : pieces) {
               OS::writeAll(pipe->writing.number(), piece);
               std::this_thread::sleep_for(std::chrono::milliseconds(20));
             }
             _exit(0);
           }
           pipe->writing.close();
           unit::print(readAll().value_or("nothing to read"));
         })
      .standardOutput;
}

TEST(StandardInput, ReadsAPayloadLargerThanOneReadWhole) {
  std::string payload;
  for (int i = 0; i < 100'000; ++i) payload += std::to_string(i);
  ASSERT_GT(payload.size(), 65'536U);
  const unit::ForkedRun run =
      unit::inForkedProcess([] { unit::print(readAll().value_or("nothing to read")); }, payload);
  EXPECT_EQ(run.standardOutput, payload);
}

TEST(StandardInput, ReadsEverySizeAroundItsBuffer) {
  for (const std::size_t size : {1U, 65'535U, 65'536U, 65'537U, 131'072U}) {
    const std::string payload(size, 'p');
    const unit::ForkedRun run =
        unit::inForkedProcess([] { unit::print(readAll().value_or("nothing to read")); }, payload);
    EXPECT_EQ(run.standardOutput, payload);
  }
}

TEST(StandardInput, ReadsUntilTheWriterClosesIt) {
  EXPECT_EQ(readFromPieces({"one ", "two ", std::string(100'000, 'x'), " end"}),
            "one two " + std::string(100'000, 'x') + " end");
}

TEST(StandardInput, KeepsEveryByte) {
  std::string payload;
  for (int byte = 0; byte < 256; ++byte) payload += static_cast<char>(byte);
  EXPECT_EQ(readFromPieces({payload}), payload);
}

TEST(StandardInput, GivesEmptyDataForAnEmptyPayload) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    const std::optional<std::string> all = readAll();
    unit::print(!all ? "absent" : all->empty() ? "empty" : "something");
  });
  EXPECT_EQ(run.standardOutput, "empty");
}

TEST(StandardInput, IsAbsentWhenItIsClosedOrADirectory) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    close(STDIN_FILENO);
    unit::print(readAll() ? "something" : "absent");
    [[maybe_unused]] const int directory = open("/", O_RDONLY);
    unit::print(readAll() ? ", something" : ", absent");
  });
  EXPECT_EQ(run.standardOutput, "absent, absent");
}

TEST(StandardInput, ReadsOnWhenSignalsInterruptIt) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    std::optional<OS::Pipe> pipe = OS::makePipe();
    dup2(pipe->reading.number(), STDIN_FILENO);
    if (fork() == 0) {
      for (int i = 0; i < 5; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        OS::writeAll(pipe->writing.number(), "piece ");
      }
      _exit(0);
    }
    pipe->writing.close();
    static std::atomic<int> interruptions{0};
    struct sigaction action {};
    action.sa_handler = [](int) { ++interruptions; };
    sigaction(SIGALRM, &action, nullptr);
    const itimerval often{.it_interval = {.tv_sec = 0, .tv_usec = 3'000},
                          .it_value = {.tv_sec = 0, .tv_usec = 3'000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    const std::string all = readAll().value_or("nothing to read");
    unit::print(all + (interruptions > 0 ? "interrupted" : "not interrupted"));
  });
  EXPECT_EQ(run.standardOutput, "piece piece piece piece piece interrupted");
}

}  // namespace
}  // namespace quillstead::hook::StandardInput
