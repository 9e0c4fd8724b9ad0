#include "hook/MCP/ChildProcess.h"
#include "unit/helpers/Files.h"
#include "unit/helpers/Server.h"

#include <gtest/gtest.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): kill is not in <csignal>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <limits>
#include <thread>

namespace quillstead::hook::ChildProcess {
namespace {

using unit::ample;
using unit::child;
using unit::timeOf;

constexpr Seconds brief{1.5};  ///< enough for a child to start and write, on a busy machine too

ChildOutcome runChild(std::string_view name, std::string_view input = {}, Seconds leash = ample) {
  return run({.executable = child(name), .input = input, .leash = leash, .firstOutput = {}});
}

Exited exited(ChildOutcome outcome) {
  Exited* const result = std::get_if<Exited>(&outcome);
  EXPECT_TRUE(result) << "timed out or not spawned: " << outcome.index();
  return result ? std::move(*result)
                : Exited{.status = -999, .standardOutput = {}, .standardError = {}};
}

TimedOut timedOut(ChildOutcome outcome) {
  TimedOut* const result = std::get_if<TimedOut>(&outcome);
  EXPECT_TRUE(result) << "exited or not spawned: " << outcome.index();
  return result ? std::move(*result) : TimedOut{.standardError = {}};
}

std::string pattern(std::size_t size) {
  std::string text = "abcdefghijklmnopqrstuvw";
  while (text.size() < size) text += text;
  text.resize(size);
  return text;
}

TEST(ChildProcess, YieldsNotSpawnedForWhatCannotBeStartedAndWritesNothing) {
  const unit::TemporaryDirectory directory;
  unit::writeFile(directory / "not-executable", "#!/bin/sh\n");
  unit::writeExecutable(directory / "no-interpreter", "#!/nothing/here\n");
  unit::writeExecutable(directory / "no-program",
                        "\x7F"
                        "nothing");
  const unit::Captured output(STDOUT_FILENO);
  const unit::Captured error(STDERR_FILENO);
  for (const std::string& path :
       {directory / "missing", directory / "missing/program", directory / "not-executable",
        directory / "no-interpreter", directory / "no-program", directory.path(), std::string()}) {
    const ChildOutcome outcome =
        run({.executable = path, .input = "input", .leash = ample, .firstOutput = {}});
    EXPECT_TRUE(std::holds_alternative<NotSpawned>(outcome)) << path;
  }
  EXPECT_EQ(output.text(), "");
  EXPECT_EQ(error.text(), "");
}

TEST(ChildProcess, GivesAnExitWithoutOutputTwoEmptyBuffers) {
  bool wasCalled = false;
  const Exited result = exited(
      run({.executable = child("ExitsWithStatus"), .input = {}, .leash = ample, .firstOutput = [&] {
             wasCalled = true;
           }}));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardOutput, "");
  EXPECT_EQ(result.standardError, "");
  EXPECT_FALSE(wasCalled);
}

TEST(ChildProcess, TellsTheExitStatus) {
  for (const int status : {0, 1, 3, 126, 127, 255}) {
    const unit::ScopedVariable variable("QUILLSTEAD_TEST_STATUS", std::to_string(status));
    EXPECT_EQ(exited(runChild("ExitsWithStatus")).status, status);
  }
}

TEST(ChildProcess, TellsTheNegatedNumberOfTheSignalThatEndedTheChild) {
  for (const int signal : {SIGTERM, SIGKILL, SIGHUP, SIGINT, SIGPIPE, SIGABRT, SIGSEGV, SIGUSR1}) {
    const unit::ScopedVariable variable("QUILLSTEAD_TEST_SIGNAL", std::to_string(signal));
    const Exited result = exited(runChild("DiesBySignal"));
    EXPECT_EQ(result.status, -signal);
    EXPECT_EQ(result.standardError, "about to die\n");
  }
}

TEST(ChildProcess, TakesAnOutsideSIGTERMForAnExitWithStatusMinus15) {
  const unit::TemporaryDirectory directory;
  const std::string file = directory / "number";
  const unit::ScopedVariable variable("QUILLSTEAD_TEST_NUMBER_FILE", file);
  std::thread outsider([&] {
    while (!std::filesystem::exists(file)) std::this_thread::yield();
    kill(std::stoi(unit::contentsOf(file)), SIGTERM);
  });
  EXPECT_EQ(exited(runChild("TellsItsNumber")).status, -15);
  outsider.join();
}

TEST(ChildProcess, CollectsOutputThatComesInChunksInOrderAndTellsTheFirstOnce) {
  std::atomic<int> calls{0};
  const Exited result = exited(
      run({.executable = child("WritesInChunks"), .input = {}, .leash = ample, .firstOutput = [&] {
             ++calls;
           }}));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardOutput, pattern(40'000));
  EXPECT_EQ(calls, 1);
}

TEST(ChildProcess, TellsNothingOfStandardError) {
  int calls = 0;
  const Exited result = exited(
      run({.executable = child("DiesBySignal"), .input = {}, .leash = ample, .firstOutput = [&] {
             ++calls;
           }}));
  EXPECT_EQ(result.standardError, "about to die\n");
  EXPECT_EQ(calls, 0);
}

TEST(ChildProcess, KillsAChildThatSleepsPastItsLeashAndKeepsItsStandardErrorOnly) {
  int calls = 0;
  const TimedOut result = timedOut(run(
      {.executable = child("WritesThenSleeps"), .input = {}, .leash = brief, .firstOutput = [&] {
         ++calls;
       }}));
  EXPECT_EQ(result.standardError, "what went wrong\n");
  EXPECT_EQ(calls, 1);
}

TEST(ChildProcess, NeverTimesOutBeforeTheLeashIsOver) {
  for (const double leash : {0.001, 0.0333, 0.1, 0.25}) {
    const Seconds taken = timeOf([&] { timedOut(runChild("SleepsForever", {}, Seconds(leash))); });
    EXPECT_GE(taken, Seconds(leash));
    EXPECT_LT(taken, Seconds(30));
  }
}

TEST(ChildProcess, TimesOutAtOnceWithALeashOfZeroOrLess) {
  for (const double leash : {0.0, -1.0, -std::numeric_limits<double>::infinity()}) {
    const Seconds taken = timeOf([&] { timedOut(runChild("SleepsForever", {}, Seconds(leash))); });
    EXPECT_LT(taken, Seconds(10));
  }
}

TEST(ChildProcess, TakesALeashBeyondEveryClock) {
  for (const double leash : {1e300, std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(exited(runChild("ExitsWithStatus", {}, Seconds(leash))).status, 0);
  }
}

TEST(ChildProcess, FeedsInputsOfEverySizeAndClosesThem) {
  for (const std::size_t size : {0U, 1U, 65'535U, 65'536U, 65'537U, 3'000'000U}) {
    const std::string input = pattern(size);
    const Exited result = exited(runChild("EchoesStdin", input));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardOutput, input) << size;
  }
}

TEST(ChildProcess, PassesEveryByteThrough) {
  std::string input;
  for (int byte = 0; byte < 256; ++byte) input += static_cast<char>(byte);
  EXPECT_EQ(exited(runChild("EchoesStdin", input)).standardOutput, input);
}

TEST(ChildProcess, SurvivesAChildThatEndsBeforeItReadAllOfItsInput) {
  const std::string input = pattern(3'000'000);
  for (int round = 0; round < 10; ++round) {
    EXPECT_EQ(exited(runChild("ExitsWithStatus", input)).status, 0);
  }
}

TEST(ChildProcess, KillsAChildThatNeverReadsItsInput) {
  const std::string input = pattern(3'000'000);
  EXPECT_EQ(timedOut(runChild("NeverReadsStdin", input, brief)).standardError, "not reading\n");
}

TEST(ChildProcess, KeepsNoMoreOfAFloodThanItSays) {
  timedOut(runChild("FloodsStdout", {}, brief));
  const TimedOut result = timedOut(runChild("FloodsStderr", {}, brief));
  EXPECT_LE(result.standardError.size(), longestOutput);
  EXPECT_GT(result.standardError.size(), 0U);
  EXPECT_EQ(result.standardError.find_first_not_of('e'), std::string::npos);
}

TEST(ChildProcess, LeavesAChildWaitingThatWritesMoreThanItKeeps) {
  const std::string input = pattern(longestOutput + 1'000'000);
  timedOut(runChild("EchoesStdin", input, Seconds(4)));
}

TEST(ChildProcess, KeepsExactlyAsMuchAsItSays) {
  const std::string input = pattern(longestOutput);
  EXPECT_EQ(exited(runChild("EchoesStdin", input)).standardOutput, input);
}

TEST(ChildProcess, WaitsForAGrandchildThatHoldsThePipesHoweverLongTheLeash) {
  const Exited result = exited(runChild("LeavesGrandchild", {}, Seconds(3)));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardOutput, "child\ngrandchild\n");
}

TEST(ChildProcess, ReadsEachStreamToItsOwnEnd) {
  const unit::TemporaryDirectory directory;
  for (const auto& [closed, kept] : {std::pair{"1", "2"}, std::pair{"2", "1"}}) {
    unit::writeExecutable(directory / "server", std::string("#!/bin/sh\nexec ") + closed +
                                                    ">&-\n(sleep 0.3; echo late >&" + kept +
                                                    ") &\nexit 3\n");
    const Exited result = exited(
        run({.executable = directory / "server", .input = {}, .leash = ample, .firstOutput = {}}));
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.standardOutput + result.standardError, "late\n") << "closed: " << closed;
  }
}

TEST(ChildProcess, WaitsForAChildThatClosedItsStreams) {
  for (const std::string& input : {std::string(), pattern(1'000'000)}) {
    std::optional<Exited> result;
    const Seconds taken =
        timeOf([&] { result = exited(runChild("ClosesStreamsAndLives", input)); });
    EXPECT_EQ(result->status, 7);
    EXPECT_GE(taken, Seconds(0.2));
  }
}

TEST(ChildProcess, KillsAChildThatClosedItsStreamsToo) {
  timedOut(runChild("ClosesStreamsAndLives", {}, Seconds(0.01)));
}

TEST(ChildProcess, StartsAProgramByARelativePathFromTheCurrentDirectory) {
  const unit::ScopedDirectory here(QUILLSTEAD_TEST_CHILDREN);
  for (const char* path : {"./EchoesStdin", "../children/EchoesStdin"}) {
    const Exited result =
        exited(run({.executable = path, .input = "text", .leash = ample, .firstOutput = {}}));
    EXPECT_EQ(result.standardOutput, "text") << path;
  }
}

TEST(ChildProcess, StartsNothingByABareNameEvenFromTheCurrentDirectory) {
  const unit::ScopedDirectory here(QUILLSTEAD_TEST_CHILDREN);
  EXPECT_TRUE(std::holds_alternative<NotSpawned>(
      run({.executable = "EchoesStdin", .input = {}, .leash = ample, .firstOutput = {}})));
}

TEST(ChildProcess, DoesNotSearchForAProgram) {
  const unit::TemporaryDirectory elsewhere;
  const unit::ScopedDirectory here(elsewhere.path());
  const unit::ScopedVariable path("PATH", QUILLSTEAD_TEST_CHILDREN);
  EXPECT_TRUE(std::holds_alternative<NotSpawned>(
      run({.executable = "EchoesStdin", .input = {}, .leash = ample, .firstOutput = {}})));
}

TEST(ChildProcess, StartsAScriptWithItsInterpreter) {
  const unit::TemporaryDirectory directory;
  unit::writeExecutable(directory / "script", "#!/bin/sh\nread line; echo \"got $line\"; exit 5\n");
  const Exited result = exited(run(
      {.executable = directory / "script", .input = "text\n", .leash = ample, .firstOutput = {}}));
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.standardOutput, "got text\n");
}

}  // namespace
}  // namespace quillstead::hook::ChildProcess
