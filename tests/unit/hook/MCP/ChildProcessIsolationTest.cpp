// What a child gets of this process, and what is left behind in this process when it is gone.
#include "hook/MCP/ChildProcess.h"
#include "support/OS/Descriptor.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Server.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

namespace quillstead::hook::ChildProcess {
namespace {

using unit::ample;
using unit::child;

ChildOutcome runChild(std::string_view name, std::string_view input = {}, Seconds leash = ample) {
  return run({.executable = child(name), .input = input, .leash = leash, .firstOutput = {}});
}

/// What a child printed, or how else it ended.
std::string printedBy(std::string_view name, std::string_view input = {}) {
  const ChildOutcome outcome = runChild(name, input);
  const Exited* const result = std::get_if<Exited>(&outcome);
  if (!result) return "timed out or not spawned";
  if (result->status != 0) return "status " + std::to_string(result->status);
  return result->standardOutput;
}

void ignore(int signal) { std::signal(signal, SIG_IGN); }

void block(int signal) {
  sigset_t set{};
  sigemptyset(&set);
  sigaddset(&set, signal);
  sigprocmask(SIG_BLOCK, &set, nullptr);
}

bool isBlocked(int signal) {
  sigset_t mask{};
  sigprocmask(SIG_BLOCK, nullptr, &mask);
  return sigismember(&mask, signal) == 1;
}

TEST(ChildProcessIsolation, GivesTheChildItsThreePipesAndNoOtherDescriptor) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    for (int i = 0; i < 30; ++i) [[maybe_unused]] const int inheritable = dup(STDERR_FILENO);
    unit::print(printedBy("ListsDescriptors"));
  });
  EXPECT_EQ(run.standardOutput, "0 1 2 ");
}

TEST(ChildProcessIsolation, GivesTheChildDefaultSignalHandlingAndAnEmptyMask) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    for (const int signal : {SIGPIPE, SIGCHLD, SIGTERM, SIGINT, SIGUSR1, SIGABRT}) ignore(signal);
    for (const int signal : {SIGTERM, SIGHUP, SIGCHLD, SIGUSR2, SIGSEGV}) block(signal);
    unit::print(printedBy("ReportsSignals"));
  });
  EXPECT_EQ(run.standardOutput, "ignored: blocked:");
}

TEST(ChildProcessIsolation, GivesTheChildNoArgumentsAndOurEnvironmentAndDirectory) {
  const unit::TemporaryDirectory directory;
  const unit::ScopedDirectory here(directory.path());
  const unit::ScopedVariable mark("QUILLSTEAD_TEST_MARK", "a mark=1");
  EXPECT_EQ(printedBy("ReportsSurroundings"),
            "1\n" + child("ReportsSurroundings") + "\n" + directory.path() + "\na mark=1\n");
}

TEST(ChildProcessIsolation, WorksWithSIGCHLDIgnoredOrBlockedAndLeavesItSo) {
  for (const bool ignored : {false, true}) {
    for (const bool blocked : {false, true}) {
      const unit::ForkedRun run = unit::inForkedProcess([&] {
        if (ignored) ignore(SIGCHLD);
        if (blocked) block(SIGCHLD);
        const unit::ScopedVariable status("QUILLSTEAD_TEST_STATUS", "3");
        for (int i = 0; i < 3; ++i) unit::print(printedBy("ExitsWithStatus") + ",");
        unit::print(printedBy("EchoesStdin", "echo,"));
        struct sigaction action {};
        sigaction(SIGCHLD, nullptr, &action);
        unit::print(isBlocked(SIGCHLD) == blocked && (action.sa_handler == SIG_IGN) == ignored
                        ? "as before"
                        : "changed");
      });
      EXPECT_EQ(run.standardOutput, "status 3,status 3,status 3,echo,as before");
    }
  }
}

TEST(ChildProcessIsolation, TimesOutWithSIGCHLDIgnoredOrBlocked) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    ignore(SIGCHLD);
    block(SIGCHLD);
    const bool isTimedOut =
        std::holds_alternative<TimedOut>(runChild("SleepsForever", {}, Seconds(0.1)));
    unit::print(isTimedOut ? "timed out" : "not timed out");
  });
  EXPECT_EQ(run.standardOutput, "timed out");
}

TEST(ChildProcessIsolation, LeavesAHandlerOfSIGCHLDInPlace) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART | SA_NOCLDSTOP;
    sigaddset(&action.sa_mask, SIGUSR1);
    sigaction(SIGCHLD, &action, nullptr);
    runChild("ExitsWithStatus");
    struct sigaction after {};
    sigaction(SIGCHLD, nullptr, &after);
    const bool isSame =
        after.sa_handler == action.sa_handler && (after.sa_flags & SA_RESTART) != 0 &&
        (after.sa_flags & SA_NOCLDSTOP) != 0 && sigismember(&after.sa_mask, SIGUSR1) == 1;
    unit::print(isSame ? "as before" : "changed");
  });
  EXPECT_EQ(run.standardOutput, "as before");
}

TEST(ChildProcessIsolation, WorksWithAnyOfTheStandardStreamsClosed) {
  for (unsigned closed = 1; closed < 8; ++closed) {
    SCOPED_TRACE(closed);
    const unit::TemporaryDirectory directory;
    unit::inForkedProcess([&] {
      for (int stream = 0; stream < 3; ++stream) {
        if (closed & (1U << static_cast<unsigned>(stream))) close(stream);
      }
      std::string report = printedBy("EchoesStdin", "echo ") + printedBy("ListsDescriptors");
      for (const int number : unit::openDescriptors()) {
        if (number < 3) report += "open:" + std::to_string(number) + " ";
      }
      unit::writeFile(directory / "report", report);
    });
    std::string stillOpen;
    for (unsigned stream = 0; stream < 3; ++stream) {
      if (!(closed & (1U << stream))) stillOpen += "open:" + std::to_string(stream) + " ";
    }
    EXPECT_EQ(unit::contentsOf(directory / "report"), "echo 0 1 2 " + stillOpen);
  }
}

TEST(ChildProcessIsolation, LeavesTheDescriptorsAsTheyWereAfterEveryKindOfRun) {
  const std::string large(1'000'000, 'x');
  struct Kind {
    const char* child;
    std::string_view input;
    double leash;
  };
  for (const Kind& kind : {Kind{"NoSuchProgram", "", 60}, Kind{"ExitsWithStatus", "", 60},
                           Kind{"ExitsWithStatus", large, 60}, Kind{"DiesBySignal", "", 60},
                           Kind{"EchoesStdin", large, 60}, Kind{"ClosesStreamsAndLives", large, 60},
                           Kind{"SleepsForever", "", 0}, Kind{"SleepsForever", "", 0.1},
                           Kind{"NeverReadsStdin", large, 0.1}, Kind{"FloodsStdout", "", 0.1},
                           Kind{"FloodsStderr", "", 0.1}, Kind{"WritesThenSleeps", "", 0.3}}) {
    SCOPED_TRACE(kind.child);
    const auto before = unit::openDescriptors();
    runChild(kind.child, kind.input, Seconds(kind.leash));
    EXPECT_EQ(unit::openDescriptors(), before);
  }
}

TEST(ChildProcessIsolation, LeavesNoProcessBehindThatEndedInTime) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    for (const char* name : {"ExitsWithStatus", "DiesBySignal", "EchoesStdin"}) runChild(name);
    runChild("NoSuchProgram");
    unit::print(waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD ? "none" : "some");
  });
  EXPECT_EQ(run.standardOutput, "none");
}

TEST(ChildProcessIsolation, KillsWithASignalThatNobodyCanBlock) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    runChild("BlocksEverySignal", {}, Seconds(1.5));
    // Either it was reaped already, or it is about to be dead; it never goes on.
    for (int round = 0; round < 3'000; ++round) {
      int status = 0;
      const pid_t reaped = waitpid(-1, &status, WNOHANG);
      if (reaped < 0) return unit::print("gone");
      if (reaped > 0) return unit::print(WTERMSIG(status) == SIGKILL ? "gone" : "another signal");
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    unit::print("still there");
  });
  EXPECT_EQ(run.standardOutput, "gone");
}

TEST(ChildProcessIsolation, IsNotSpawnedWhenThereAreNoDescriptorsLeftAndLeaksNone) {
  for (int spare = 0; spare < 9; ++spare) {
    SCOPED_TRACE(spare);
    const unit::ForkedRun run = unit::inForkedProcess([&] {
      const auto openAtFirst = static_cast<rlim_t>(unit::openDescriptors().back() + 1);
      std::vector<OS::Descriptor> hoard;
      const rlimit limit{.rlim_cur = openAtFirst + 50, .rlim_max = openAtFirst + 50};
      setrlimit(RLIMIT_NOFILE, &limit);
      for (int number = dup(0); number != -1; number = dup(0)) hoard.emplace_back(number);
      hoard.resize(hoard.size() - static_cast<std::size_t>(spare));
      const auto before = unit::openDescriptors();
      const ChildOutcome outcome = runChild("ExitsWithStatus");
      unit::print(std::holds_alternative<NotSpawned>(outcome) ? "not spawned" : "spawned");
      unit::print(unit::openDescriptors() == before ? ", none leaked" : ", leaked");
    });
    EXPECT_EQ(run.standardOutput, spare < 8 ? "not spawned, none leaked" : "spawned, none leaked");
  }
}

TEST(ChildProcessIsolation, CarriesOnWhenSignalsInterruptIt) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    const itimerval often{.it_interval = {.tv_sec = 0, .tv_usec = 2'000},
                          .it_value = {.tv_sec = 0, .tv_usec = 2'000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    unit::print(std::to_string(printedBy("WritesInChunks").size()));
    const Seconds taken = unit::timeOf([] { runChild("SleepsForever", {}, Seconds(0.2)); });
    unit::print(taken >= Seconds(0.2) ? ", not early" : ", early");
  });
  EXPECT_EQ(run.standardOutput, "40000, not early");
}

TEST(ChildProcessIsolation, RunsOneChildAfterAnother) {
  const auto before = unit::openDescriptors();
  for (int i = 0; i < 50; ++i) {
    const std::string input = "call " + std::to_string(i);
    ASSERT_EQ(printedBy("EchoesStdin", input), input);
  }
  EXPECT_EQ(unit::openDescriptors(), before);
}

}  // namespace
}  // namespace quillstead::hook::ChildProcess
