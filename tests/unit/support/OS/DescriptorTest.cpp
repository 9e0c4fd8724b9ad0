#include "support/OS/Descriptor.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <thread>

namespace quillstead::OS {
namespace {

bool isOpen(int number) { return fcntl(number, F_GETFD) != -1; }

std::string everythingIn(int descriptor) {
  std::string all;
  std::array<char, 4096> buffer;
  for (;;) {
    const Transfer part = read(descriptor, buffer.data(), buffer.size());
    if (part.result != Transfer::Result::moved) return all;
    all.append(buffer.data(), part.count);
  }
}

TEST(Descriptor, ClosesWhatItOwnsWhenItGoes) {
  int number = -1;
  {
    const Descriptor owned(dup(STDERR_FILENO));
    number = owned.number();
    EXPECT_TRUE(owned.isOpen());
    EXPECT_TRUE(isOpen(number));
  }
  EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, OwnsNothingAtFirstAndAfterItWasClosed) {
  Descriptor none;
  EXPECT_FALSE(none.isOpen());
  none.close();
  Descriptor owned(dup(STDERR_FILENO));
  const int number = owned.number();
  owned.close();
  EXPECT_FALSE(owned.isOpen());
  EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, HandsOverWhatItOwnsWhenMoved) {
  Descriptor first(dup(STDERR_FILENO));
  Descriptor second(dup(STDERR_FILENO));
  const int kept = first.number();
  const int dropped = second.number();
  second = std::move(first);
  EXPECT_EQ(second.number(), kept);
  EXPECT_TRUE(isOpen(kept));
  EXPECT_FALSE(isOpen(dropped));
  const Descriptor third(std::move(second));
  EXPECT_EQ(third.number(), kept);
  EXPECT_TRUE(isOpen(kept));
}

TEST(Descriptor, SurvivesBeingMovedIntoItself) {
  Descriptor owned(dup(STDERR_FILENO));
  Descriptor& same = owned;
  owned = std::move(same);
  EXPECT_TRUE(owned.isOpen());
  EXPECT_TRUE(isOpen(owned.number()));
}

TEST(Transfer, TellsMovedEndedNotReadyAndFailedApart) {
  std::optional<Pipe> pipe = makePipe();
  ASSERT_TRUE(pipe);
  std::array<char, 16> buffer{};
  ASSERT_TRUE(makeNonBlocking(pipe->reading));
  EXPECT_EQ(read(pipe->reading.number(), buffer.data(), buffer.size()).result,
            Transfer::Result::notReady);

  const Transfer written = write(pipe->writing.number(), "abc");
  EXPECT_EQ(written.result, Transfer::Result::moved);
  EXPECT_EQ(written.count, 3U);
  const Transfer got = read(pipe->reading.number(), buffer.data(), buffer.size());
  EXPECT_EQ(got.result, Transfer::Result::moved);
  EXPECT_EQ(std::string_view(buffer.data(), got.count), "abc");

  pipe->writing.close();
  EXPECT_EQ(read(pipe->reading.number(), buffer.data(), buffer.size()).result,
            Transfer::Result::ended);
  EXPECT_EQ(read(-1, buffer.data(), buffer.size()).result, Transfer::Result::failed);
  EXPECT_EQ(write(-1, "abc").result, Transfer::Result::failed);
}

TEST(Transfer, FailsWhenNobodyReadsAnyMore) {
  std::optional<Pipe> pipe = makePipe();
  ASSERT_TRUE(pipe);
  pipe->reading.close();
  EXPECT_EQ(write(pipe->writing.number(), "abc").result, Transfer::Result::failed);
  EXPECT_FALSE(writeAll(pipe->writing.number(), "abc"));
  EXPECT_FALSE(writeLine(pipe->writing.number(), "abc"));
}

std::atomic<int> interruptions{0};

void countInterruption(int /*signal*/) { ++interruptions; }

/// Interrupts system calls every few milliseconds for its lifetime.
class Interruptions {
 public:
  Interruptions() {
    interruptions = 0;
    struct sigaction action {};
    action.sa_handler = countInterruption;
    sigaction(SIGALRM, &action, &before_);
    const itimerval often{.it_interval = {.tv_sec = 0, .tv_usec = 5'000},
                          .it_value = {.tv_sec = 0, .tv_usec = 5'000}};
    setitimer(ITIMER_REAL, &often, nullptr);
  }
  Interruptions(const Interruptions&) = delete;
  Interruptions& operator=(const Interruptions&) = delete;
  ~Interruptions() {
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before_, nullptr);
  }

 private:
  struct sigaction before_ {};
};

TEST(Transfer, IsTriedAgainWhenASignalInterruptsIt) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    std::optional<Pipe> pipe = makePipe();
    if (fork() == 0) {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      writeAll(pipe->writing.number(), "late");
      _exit(0);
    }
    const Interruptions often;
    std::array<char, 16> buffer{};
    const Transfer got = read(pipe->reading.number(), buffer.data(), buffer.size());
    unit::print({buffer.data(), got.count});
    unit::print(interruptions > 0 ? ", interrupted" : ", not interrupted");
  });
  EXPECT_EQ(run.standardOutput, "late, interrupted");
}

TEST(WriteAll, WaitsForRoomInAPipeThatDoesNotBlock) {
  std::optional<Pipe> pipe = makePipe();
  ASSERT_TRUE(pipe);
  ASSERT_TRUE(makeNonBlocking(pipe->writing));
  const std::string text(1'000'000, 'x');
  std::string got;
  std::thread reader([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    got = everythingIn(pipe->reading.number());
  });
  EXPECT_TRUE(writeAll(pipe->writing.number(), text));
  pipe->writing.close();
  reader.join();
  EXPECT_EQ(got, text);
}

TEST(WriteAll, WritesNothingForNothing) {
  EXPECT_TRUE(writeAll(-1, ""));
  EXPECT_FALSE(writeAll(-1, "a"));
}

TEST(WriteLine, WritesTextAndLineEndAtOnce) {
  std::array<int, 2> ends{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()), 0);  // one message for each write
  const Descriptor reading(ends[0]);
  const Descriptor writing(ends[1]);
  for (const std::string_view text : {"a line", "", "two\nlines"}) {
    EXPECT_TRUE(writeLine(writing.number(), text));
    std::array<char, 64> buffer{};
    const Transfer got = read(reading.number(), buffer.data(), buffer.size());
    EXPECT_EQ(std::string_view(buffer.data(), got.count), std::string(text) + "\n");
  }
}

TEST(WriteLine, WritesALongLineWholeWhereThereIsLittleRoom) {
  for (const std::size_t size : {65'535U, 65'536U, 65'537U, 1'000'000U}) {
    SCOPED_TRACE(size);
    std::optional<Pipe> pipe = makePipe();
    ASSERT_TRUE(pipe);
    ASSERT_TRUE(makeNonBlocking(pipe->writing));
    const std::string text(size, 'x');
    std::string got;
    std::thread reader([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      got = everythingIn(pipe->reading.number());
    });
    EXPECT_TRUE(writeLine(pipe->writing.number(), text));
    pipe->writing.close();
    reader.join();
    EXPECT_EQ(got, text + "\n");
  }
}

TEST(MakePipe, ConnectsTwoEndsThatNoOtherProgramGets) {
  std::optional<Pipe> pipe = makePipe();
  ASSERT_TRUE(pipe);
  for (const int end : {pipe->reading.number(), pipe->writing.number()}) {
    EXPECT_GT(end, STDERR_FILENO);
    EXPECT_NE(fcntl(end, F_GETFD) & FD_CLOEXEC, 0);
  }
  EXPECT_TRUE(writeAll(pipe->writing.number(), "through"));
  pipe->writing.close();
  EXPECT_EQ(everythingIn(pipe->reading.number()), "through");
}

TEST(MakePipe, LeavesTheNumbersOfClosedStandardStreamsAlone) {
  for (const std::vector<int>& closed : {std::vector{0}, {1, 2}, {0, 2}, {0, 1, 2}}) {
    const unit::TemporaryDirectory directory;
    unit::inForkedProcess([&] {
      for (const int stream : closed) close(stream);
      const std::optional<Pipe> pipe = makePipe();
      std::string report =
          pipe && pipe->reading.number() > 2 && pipe->writing.number() > 2 ? "above" : "not above";
      for (const int stream : closed) report += isOpen(stream) ? ", taken" : "";
      unit::writeFile(directory / "report", report);
    });
    EXPECT_EQ(unit::contentsOf(directory / "report"), "above");
  }
}

TEST(MakePipe, IsAbsentWhenThereAreNoDescriptorsLeftAndLeaksNone) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    std::vector<Descriptor> all;
    for (int number = dup(0); number != -1; number = dup(0)) all.emplace_back(number);
    all.pop_back();
    const auto before = unit::openDescriptors();
    const bool isMade = makePipe().has_value();
    unit::print(isMade ? "made" : "absent");
    unit::print(unit::openDescriptors() == before ? ", none leaked" : ", leaked");
  });
  EXPECT_EQ(run.standardOutput, "absent, none leaked");
}

TEST(OpenForAppending, CreatesAFileWithMode0644LessTheMask) {
  const unit::TemporaryDirectory directory;
  for (const auto& [mask, mode] : {std::pair<mode_t, mode_t>{0, 0644}, {022, 0644}, {077, 0600}}) {
    const std::string path = directory / std::to_string(mask);
    const mode_t before = umask(mask);
    const Descriptor file = openForAppending(path.c_str());
    umask(before);
    EXPECT_TRUE(file.isOpen());
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, mode);
  }
}

TEST(OpenForAppending, WritesBehindWhatIsThereAlsoWhenItGrew) {
  const unit::TemporaryDirectory directory;
  const std::string path = directory / "log";
  unit::writeFile(path, "one\n");
  const Descriptor file = openForAppending(path.c_str());
  const Descriptor other = openForAppending(path.c_str());
  EXPECT_TRUE(writeAll(other.number(), "two\n"));
  EXPECT_TRUE(writeAll(file.number(), "three\n"));
  EXPECT_EQ(unit::contentsOf(path), "one\ntwo\nthree\n");
}

TEST(OpenForAppending, GivesADescriptorThatNoOtherProgramGets) {
  const unit::TemporaryDirectory directory;
  const Descriptor file = openForAppending((directory / "log").c_str());
  EXPECT_GT(file.number(), STDERR_FILENO);
  EXPECT_NE(fcntl(file.number(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(OpenForAppending, NeverTakesTheNumberOfAStandardStream) {
  const unit::TemporaryDirectory directory;
  unit::inForkedProcess([&] {
    for (const int stream : {0, 1, 2}) close(stream);
    const Descriptor file = openForAppending((directory / "log").c_str());
    const bool isAbove = file.number() > 2 && !isOpen(0) && !isOpen(1) && !isOpen(2);
    writeAll(file.number(), isAbove ? "above" : "not above");
  });
  EXPECT_EQ(unit::contentsOf(directory / "log"), "above");
}

TEST(OpenForAppending, RefusesAFIFOThatNobodyReadsWithoutWaiting) {
  const unit::TemporaryDirectory directory;
  const std::string fifo = directory / "fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const unit::ForkedRun run = unit::inForkedProcess(
      [&] { unit::print(openForAppending(fifo.c_str()).isOpen() ? "open" : "refused"); });
  EXPECT_EQ(run.standardOutput, "refused");
}

TEST(OpenForAppending, OpensNothingWhereTheFileCannotBe) {
  const unit::TemporaryDirectory directory;
  EXPECT_FALSE(openForAppending((directory / "missing/log").c_str()).isOpen());
  EXPECT_FALSE(openForAppending(directory.path().c_str()).isOpen());
  EXPECT_FALSE(openForAppending("").isOpen());
}

TEST(MakeNonBlocking, IsFalseForADescriptorThatIsNotOpen) {
  EXPECT_FALSE(makeNonBlocking(Descriptor()));
}

}  // namespace
}  // namespace quillstead::OS
