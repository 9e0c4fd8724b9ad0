#include "hook/FailOpenBelt.h"
#include "hook/PretoolAnswer.h"
#include "unit/helpers/JSONValues.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace quillstead::hook::PretoolAnswer {
namespace {

std::optional<JSON::Object> echo(JSON::ObjectView payload, Decision decision) {
  return JSON::objectOf({{"p", JSON::Object(payload)}, {"allow", decision == Decision::allow}});
}

std::optional<JSON::Object> nothing(JSON::ObjectView /*payload*/, Decision /*decision*/) {
  return std::nullopt;
}

std::optional<JSON::Object> fault(JSON::ObjectView payload, Decision decision) {
  std::raise(SIGSEGV);
  return echo(payload, decision);
}

constexpr std::string_view payload = R"({"a/b":1})";
constexpr std::string_view echoed = R"({"p":{"a/b":1},"allow":false})";

unit::ForkedRun served(Stamp stamp, std::string_view input, std::string entry = "HOME=/nowhere") {
  return unit::inForkedProcess(
      [&] { serve(unit::EnvironmentOf{std::move(entry)}, stamp, Decision::none); }, input);
}

TEST(PretoolAnswer, PrintsWhatThePayloadIsAnsweredWith) {
  const unit::ForkedRun run = served(echo, payload);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, std::string(echoed) + "\n");
  EXPECT_EQ(run.standardError, "");
}

TEST(PretoolAnswer, LetsTheCallThroughWithAnEmptyObject) {
  const unit::ForkedRun run = served(nothing, payload);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
  EXPECT_EQ(run.standardError, "");
}

TEST(PretoolAnswer, LetsTheCallThroughWhenNothingCanBeRead) {
  const unit::ForkedRun run = unit::inForkedProcess([] {
    close(STDIN_FILENO);
    serve(unit::EnvironmentOf{}, echo, Decision::none);
  });
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(PretoolAnswer, LetsTheCallThroughWhenAFaultHappens) {
  const unit::ForkedRun run = served(fault, payload);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
}

TEST(PretoolAnswer, EndsTheProcessWithTheAnswerAsTheLastThingThatItDoes) {
  const unit::ForkedRun run = unit::inForkedProcess(
      [] {
        std::atexit([] { unit::print("more"); });
        serve(unit::EnvironmentOf{}, echo, Decision::none);
      },
      payload);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, std::string(echoed) + "\n");
}

TEST(PretoolAnswer, OverflowsTheStackWhenATestAsksForIt) {
  const unit::ForkedRun run = served(echo, payload, "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=1");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardOutput, "{}\n");
  EXPECT_EQ(served(echo, payload, "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=true").standardOutput,
            std::string(echoed) + "\n");
}

TEST(PretoolAnswer, LetsTheCallThroughForWhatIsNoObject) {
  for (const char* const input : {"", "no JSON", "[]", "{}]", "1"}) {
    EXPECT_EQ(document(input, echo, Decision::none), "{}") << input;
  }
}

TEST(PretoolAnswer, HandsTheDecisionToTheStamp) {
  EXPECT_EQ(document("{}", echo, Decision::allow), R"({"p":{},"allow":true})");
}

TEST(PretoolAnswer, WritesCompactlyWithSlashesAsTheyAre) {
  EXPECT_EQ(document(R"( { "a/b" : "c\/d" , "n" : 1 } )", echo, Decision::none),
            R"({"p":{"a/b":"c/d","n":1},"allow":false})");
}

TEST(PretoolAnswer, WritesIntoTheMemoryOfAPayloadThatIsNoLongerNeeded) {
  std::string input = R"({"long":")" + std::string(100'000, 'x') + R"("})";
  input.reserve(2 * input.size());
  const void* const memory = input.data();
  EXPECT_EQ(static_cast<const void*>(document(std::move(input), echo, Decision::none).data()),
            memory);
}

}  // namespace
}  // namespace quillstead::hook::PretoolAnswer
