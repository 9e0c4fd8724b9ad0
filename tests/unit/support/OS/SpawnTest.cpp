#include "support/OS/Spawn.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace quillstead::OS {
namespace {

/// Spawns the program with our standard streams and waits for its end. False when it was not
/// spawned.
bool spawnAndWait(const std::string& program) {
  constexpr int above = 10;
  const StandardStreams streams{.input = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, above),
                                .output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, above),
                                .error = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, above)};
  const std::optional<pid_t> process = spawn(program, streams);
  if (process) waitpid(*process, nullptr, 0);
  for (const int stream : {streams.input, streams.output, streams.error}) close(stream);
  return process.has_value();
}

void blockAllSignals() {
  sigset_t all{};
  sigfillset(&all);
  sigprocmask(SIG_SETMASK, &all, nullptr);
}

void ignoreAllSignals() {
  for (int signal = 1; signal < 32; ++signal) std::signal(signal, SIG_IGN);
}

/// A letter for each signal: blocked or not, ignored or not.
std::string ownSignals() {
  sigset_t mask{};
  sigprocmask(SIG_BLOCK, nullptr, &mask);
  std::string letters;
  for (int signal = 1; signal < 32; ++signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    letters += sigismember(&mask, signal) == 1 ? 'b' : '-';
    letters += action.sa_handler == SIG_IGN ? 'i' : '-';
  }
  return letters;
}

TEST(Spawn, LetsAChildKeepItsStandardStreamsOnly) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    for (int i = 0; i < 20; ++i) [[maybe_unused]] const int inheritable = dup(STDERR_FILENO);
    spawnAndWait(unit::child("ListsDescriptors"));
  });
  EXPECT_EQ(run.standardOutput, "0 1 2 ");
}

TEST(Spawn, GivesAChildTheStreamsEachInItsPlace) {
  const unit::ForkedRun run = unit::inForkedProcess(
      [] { spawnAndWait(unit::child("EchoesStdin")); }, "from input to output");
  EXPECT_EQ(run.standardOutput, "from input to output");
}

TEST(Spawn, LetsEverySignalDoInAChildWhatItDoesByDefault) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    ignoreAllSignals();
    std::signal(SIGCHLD, SIG_DFL);
    blockAllSignals();
    spawnAndWait(unit::child("ReportsSignals"));
  });
  EXPECT_EQ(run.standardOutput, "ignored: blocked:");
}

TEST(Spawn, LeavesOurOwnSignalsAsTheyWere) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    std::signal(SIGUSR1, SIG_IGN);
    sigset_t blocked{};
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR2);
    sigprocmask(SIG_SETMASK, &blocked, nullptr);
    const std::string before = ownSignals();
    for (const char* program : {"ExitsWithStatus", "no such program"}) {
      spawnAndWait(unit::child(program));
      unit::print(ownSignals() == before ? "as before " : "changed ");
    }
  });
  EXPECT_EQ(run.standardOutput, "as before as before ");
}

/// In a process of its own: a test before this one may have left a child that was killed and is not
/// waited for.
TEST(Spawn, IsAbsentForWhatCannotBeStartedAndLeavesNoChildBehind) {
  const unit::TemporaryDirectory directory;
  unit::writeFile(directory / "not-executable", "#!/bin/sh\n");
  for (const std::string& program :
       {directory / "missing", directory / "not-executable", directory.path(), std::string()}) {
    const unit::ForkedRun run = unit::inForkedProcess([&] {
      unit::print(spawnAndWait(program) ? "spawned, " : "absent, ");
      const bool hasNoChild = waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
      unit::print(hasNoChild ? "no child" : "a child");
    });
    EXPECT_EQ(run.standardOutput, "absent, no child") << program;
  }
}

}  // namespace
}  // namespace quillstead::OS
