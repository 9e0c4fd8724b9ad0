#include "hook/FailOpenBelt.h"
#include "hook/StackOverflowProbe.h"
#include "support/OS/Descriptor.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <exception>
#include <new>
#include <stdexcept>
#include <vector>

namespace quillstead::hook::FailOpenBelt {
namespace {

using unit::ForkedRun;
using unit::inForkedProcess;

constexpr std::array faultSignals{SIGILL, SIGTRAP, SIGSEGV, SIGBUS, SIGFPE, SIGABRT};

std::string describe(const stack_t& stack) {
  return std::to_string(reinterpret_cast<std::uintptr_t>(stack.ss_sp)) + "/" +
         std::to_string(stack.ss_size) + "/" + std::to_string(stack.ss_flags);
}

/// How this process treats the fault signals now, in words that can be compared.
std::string treatment() {
  std::string words;
  for (const int signal : faultSignals) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    words += std::to_string(reinterpret_cast<std::uintptr_t>(action.sa_handler)) + "/" +
             std::to_string(action.sa_flags) + " ";
  }
  stack_t stack{};
  sigaltstack(nullptr, &stack);
  sigset_t mask{};
  sigprocmask(SIG_BLOCK, nullptr, &mask);
  for (const int signal : faultSignals) words += std::to_string(sigismember(&mask, signal));
  return words + " " + describe(stack);
}

const std::vector<std::optional<std::string_view>> withAndWithoutSilence{"{}", std::nullopt};

void blockFaultSignals() {
  sigset_t set{};
  sigemptyset(&set);
  for (const int signal : faultSignals) sigaddset(&set, signal);
  sigprocmask(SIG_BLOCK, &set, nullptr);
}

TEST(FailOpenBelt, AnswersEveryFaultSignalWithTheSilenceAndStatus0) {
  for (const int signal : faultSignals) {
    SCOPED_TRACE(signal);
    const ForkedRun run = inForkedProcess([&] {
      arm(R"({"continue":true})");
      std::raise(signal);
      unit::print("went on");
      _exit(3);
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.standardOutput, "{\"continue\":true}\n");
  }
}

TEST(FailOpenBelt, AnswersABadMemoryAccess) {
  const ForkedRun run = inForkedProcess([] {
    arm("{}");
    void* const forbidden = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    *static_cast<volatile char*>(forbidden) = 1;
    _exit(3);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(FailOpenBelt, AnswersAnAccessBehindTheEndOfAMappedFile) {
  const unit::TemporaryDirectory directory;
  unit::writeFile(directory / "empty", "");
  const ForkedRun run = inForkedProcess([&] {
    arm("{}");
    std::FILE* const file = std::fopen((directory / "empty").c_str(), "r+");
    void* const nothing = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, fileno(file), 0);
    [[maybe_unused]] const char byte = *static_cast<volatile char*>(nothing);
    _exit(3);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(FailOpenBelt, AnswersAStackOverflowOnTheAlternateStack) {
  const ForkedRun run = inForkedProcess([] {
    arm("{}");
    StackOverflowProbe::recurse(0);
    _exit(3);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(FailOpenBelt, WritesASilenceOfSeveralLinesWholeWithOneLineEndAdded) {
  for (const std::string silence : {"one\ntwo\n\nthree", "ends in a line feed\n", ""}) {
    const ForkedRun run = inForkedProcess([&] {
      arm(silence);
      std::raise(SIGSEGV);
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.standardOutput, silence + "\n");
  }
}

TEST(FailOpenBelt, WritesTheLongestSilenceWhole) {
  const std::string longest(longestSilence, 's');
  const ForkedRun run = inForkedProcess([&] {
    arm(longest);
    std::raise(SIGSEGV);
  });
  EXPECT_EQ(run.standardOutput, longest + "\n");
}

TEST(FailOpenBelt, ChangesNothingWhenTheSilenceIsAbsent) {
  const ForkedRun run = inForkedProcess([] {
    blockFaultSignals();
    const std::string before = treatment();
    arm(std::nullopt);
    unit::print(treatment() == before ? "unchanged" : "changed");
  });
  EXPECT_EQ(run.standardOutput, "unchanged");
}

TEST(FailOpenBelt, LetsAFaultEndTheProcessWhenTheSilenceIsAbsent) {
  const ForkedRun run = inForkedProcess([] {
    arm(std::nullopt);
    std::signal(SIGSEGV, SIG_DFL);  // a sanitizer may have its own handler there
    std::raise(SIGSEGV);
  });
  EXPECT_EQ(run.status, -SIGSEGV);
  EXPECT_EQ(run.standardOutput, "");
}

TEST(FailOpenBelt, ChangesNothingWhenTheSilenceIsTooLong) {
  const ForkedRun run = inForkedProcess([] {
    const std::string before = treatment();
    arm(std::string(longestSilence + 1, 's'));
    unit::print(treatment() == before ? "unchanged" : "changed");
  });
  EXPECT_EQ(run.standardOutput, "unchanged");
}

TEST(FailOpenBelt, InstallsItsHandlersForTheAlternateStackAndNothingMore) {
  const ForkedRun run = inForkedProcess([] {
    arm("{}");
    for (const int signal : faultSignals) {
      struct sigaction action {};
      sigaction(signal, nullptr, &action);
      // The C library may add a flag of its own for returning from a handler.
      constexpr int ours = SA_ONSTACK | SA_SIGINFO | SA_NODEFER | SA_RESTART | SA_NOCLDSTOP |
                           SA_NOCLDWAIT | static_cast<int>(SA_RESETHAND);
      bool isMaskEmpty = true;
      for (int other = 1; other < 32; ++other) {
        if (sigismember(&action.sa_mask, other) == 1) isMaskEmpty = false;
      }
      unit::print((action.sa_flags & ours) == SA_ONSTACK && isMaskEmpty ? "y" : "n");
    }
    stack_t stack{};
    sigaltstack(nullptr, &stack);
    unit::print(" " + std::to_string(stack.ss_size) + " " + std::to_string(stack.ss_flags));
  });
  EXPECT_EQ(run.standardOutput, "yyyyyy 65536 0");
}

TEST(FailOpenBelt, KeepsTheFirstSilenceWhenArmedTwice) {
  const ForkedRun run = inForkedProcess([] {
    arm("first");
    const std::string before = treatment();
    arm("second");
    if (treatment() != before) unit::print("changed ");
    std::raise(SIGBUS);
  });
  EXPECT_EQ(run.standardOutput, "first\n");
}

TEST(FailOpenBelt, ArmsAfterASilenceThatWasAbsent) {
  const ForkedRun run = inForkedProcess([] {
    arm(std::nullopt);
    arm("{}");
    std::raise(SIGFPE);
  });
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(FailOpenBelt, UnblocksTheFaultSignals) {
  const ForkedRun run = inForkedProcess([] {
    blockFaultSignals();
    arm("{}");
    std::raise(SIGABRT);
    _exit(3);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(FailOpenBelt, SaysNothingMoreOnceTheAnswerWasPrinted) {
  for (const int signal : faultSignals) {
    const ForkedRun run = inForkedProcess([&] {
      arm("{}");
      unit::print("the answer\n");
      answered = true;
      std::raise(signal);
      _exit(3);
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.standardOutput, "the answer\n");
  }
}

TEST(FailOpenBelt, ExitsWithStatus0WhenTheSilenceCannotBeWritten) {
  const ForkedRun closed = inForkedProcess([] {
    arm("{}");
    close(STDOUT_FILENO);
    std::raise(SIGSEGV);
    _exit(3);
  });
  EXPECT_EQ(closed.status, 0);

  const ForkedRun broken = inForkedProcess([] {
    arm("{}");
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) _exit(4);
    close(ends[0]);
    dup2(ends[1], STDOUT_FILENO);
    std::raise(SIGSEGV);
    _exit(3);
  });
  EXPECT_EQ(broken.status, 0);
}

TEST(FailOpenBelt, RunsNoExitHandlersAndFlushesNoBuffers) {
  const ForkedRun run = inForkedProcess([] {
    static_cast<void>(std::atexit([] { unit::print("exit handler"); }));
    std::fputs("buffered", stdout);
    arm("{}");
    std::raise(SIGSEGV);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(FailOpenBelt, InstallsItsHandlerForOneSignal) {
  const ForkedRun run = inForkedProcess([] {
    arm("{}");
    installHandler(SIGUSR1);
    std::raise(SIGUSR1);
    _exit(3);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(FailOpenBelt, AnswersRunningOutOfMemory) {
  const ForkedRun run = inForkedProcess([] {
    endQuietlyOnFailure();
    arm("{}");
    std::get_new_handler()();
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(FailOpenBelt, AnswersAnAllocationThatFails) {
#if !defined(__linux__)
  GTEST_SKIP() << "needs a system that limits a program's address space";
#endif
  if (QUILLSTEAD_SANITIZED) GTEST_SKIP() << "the sanitizer's allocator ends the program by itself";
  for (const auto& silence : withAndWithoutSilence) {
    const ForkedRun run = inForkedProcess([&] {
      endQuietlyOnFailure();
      arm(silence);
      const rlimit limit{.rlim_cur = 64 << 20, .rlim_max = 64 << 20};
      setrlimit(RLIMIT_AS, &limit);
      std::vector<std::string> hoard;
      for (;;) hoard.emplace_back(1 << 20, 'x');
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.standardOutput, silence ? "{}\n" : "");
  }
}

TEST(FailOpenBelt, AnswersAnExceptionThatNobodyCatches) {
  for (const auto& silence : withAndWithoutSilence) {
    const ForkedRun run = inForkedProcess([&] {
      endQuietlyOnFailure();
      arm(silence);
      throw std::runtime_error("nobody catches this");
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.standardOutput, silence ? "{}\n" : "");
    EXPECT_EQ(run.standardError, "");
  }
}

TEST(Pause, KeepsFaultSignalsWaitingUntilTheAnswerIsNoted) {
  const ForkedRun run = inForkedProcess([] {
    arm("{}");
    {
      const Pause pause;
      std::raise(SIGABRT);
      unit::print("the answer\n");
      answered = true;
    }
    _exit(3);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "the answer\n");
}

TEST(Pause, LeavesTheMaskAsItWas) {
  const ForkedRun run = inForkedProcess([] {
    arm("{}");
    const std::string before = treatment();
    { const Pause pause; }
    unit::print(treatment() == before ? "as before" : "changed");
  });
  EXPECT_EQ(run.standardOutput, "as before");
}

TEST(Answer, PrintsTheAnswerAndOneLineEnd) {
  const ForkedRun run = inForkedProcess([] { answer(R"({"a":1})"); });
  EXPECT_EQ(run.standardOutput, "{\"a\":1}\n");
}

TEST(Answer, PrintsInOneWrite) {
  std::array<int, 2> ends{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()), 0);  // one message for each write
  const OS::Descriptor reading(ends[0]);
  const OS::Descriptor writing(ends[1]);
  inForkedProcess([&] {
    dup2(writing.number(), STDOUT_FILENO);
    answer("the answer");
  });
  std::array<char, 64> buffer{};
  const OS::Transfer got = OS::read(reading.number(), buffer.data(), buffer.size());
  EXPECT_EQ(std::string_view(buffer.data(), got.count), "the answer\n");
}

TEST(Answer, NotesThatTheAnswerWasPrinted) {
  const ForkedRun run = inForkedProcess([] {
    unit::print(answered ? "too early," : "");
    answer("{}");
    unit::print(answered ? "answered" : "not answered");
  });
  EXPECT_EQ(run.standardOutput, "{}\nanswered");
}

TEST(Answer, LetsNoFaultPrintASecondAnswer) {
  const ForkedRun run = inForkedProcess([] {
    arm("{}");
    answer("the answer");
    std::raise(SIGSEGV);
    _exit(3);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "the answer\n");
}

TEST(Answer, SurvivesAHarnessThatNoLongerListens) {
  const ForkedRun run = inForkedProcess([] {
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
}  // namespace quillstead::hook::FailOpenBelt
