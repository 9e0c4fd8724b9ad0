#include "hook/FailOpenBelt.h"
#include "hook/PretoolAnswer.h"
#include "unit/helpers/JSONValues.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

namespace quillstead::PretoolAnswer {
namespace {

std::optional<std::string> echo(std::string input) { return "<" + std::move(input) + ">"; }

std::optional<std::string> nothing(std::string /*input*/) { return std::nullopt; }

std::optional<std::string> fault(std::string /*input*/) {
  std::raise(SIGSEGV);
  return "went on";
}

unit::ForkedRun served(AnswerTo answerTo, std::string_view input,
                       std::string entry = "HOME=/nowhere") {
  return unit::inForkedProcess(
      [&] { _exit(serve(unit::EnvironmentOf{std::move(entry)}, answerTo)); }, input);
}

TEST(PretoolAnswer, PrintsWhatThePayloadIsAnsweredWith) {
  const unit::ForkedRun run = served(echo, "the payload");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "<the payload>\n");
  EXPECT_EQ(run.standardError, "");
}

TEST(PretoolAnswer, LetsTheCallThroughWithAnEmptyObject) {
  const unit::ForkedRun run = served(nothing, "the payload");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
  EXPECT_EQ(run.standardError, "");
}

TEST(PretoolAnswer, LetsTheCallThroughWhenNothingCanBeRead) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    close(STDIN_FILENO);
    _exit(serve(unit::EnvironmentOf{}, echo));
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(PretoolAnswer, LetsTheCallThroughWhenAFaultHappens) {
  const unit::ForkedRun run = served(fault, "the payload");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(PretoolAnswer, SaysNothingMoreWhenAFaultHappensAfterTheAnswer) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    serve(unit::EnvironmentOf{}, echo);
    std::raise(SIGSEGV);
    _exit(3);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "<>\n");
}

TEST(PretoolAnswer, OverflowsTheStackWhenATestAsksForIt) {
  const unit::ForkedRun run =
      served(echo, "the payload", "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=1");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
  EXPECT_EQ(served(echo, "p", "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=true").standardOutput,
            "<p>\n");
}

TEST(PretoolAnswer, WritesCompactlyWithSlashesAsTheyAre) {
  const JSON::Object document = JSON::objectOf({{"a/b", "c/d"}, {"n", 1}});
  for (const char* reused : {"", "content that does not matter and is longer than the document"}) {
    EXPECT_EQ(written(document, reused), R"({"a/b":"c/d","n":1})");
  }
}

}  // namespace
}  // namespace quillstead::PretoolAnswer
