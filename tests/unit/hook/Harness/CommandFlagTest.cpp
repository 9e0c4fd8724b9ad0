#include "hook/Harness/CommandFlag.h"
#include "hook/Harness/Harnesses.h"
#include "unit/helpers/CommandLine.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace quillstead::hook {
namespace {

std::optional<std::string_view> valueIn(std::vector<std::string> arguments) {
  static std::vector<std::unique_ptr<unit::CommandLine>> kept;  // what the results point into
  kept.push_back(std::make_unique<unit::CommandLine>(std::move(arguments)));
  return CommandFlag::value("--slot", kept.back()->arguments());
}

TEST(CommandFlag, TakesTheNextArgumentOrWhatFollowsTheEqualsSign) {
  EXPECT_EQ(valueIn({"--slot", "index"}), "index");
  EXPECT_EQ(valueIn({"--slot=index"}), "index");
  EXPECT_EQ(valueIn({"--slot=a=b"}), "a=b");
  EXPECT_EQ(valueIn({"--slot==", "x"}), "=");
}

TEST(CommandFlag, TakesTheNextArgumentWhateverItIs) {
  EXPECT_EQ(valueIn({"--slot", "--harness"}), "--harness");
  EXPECT_EQ(valueIn({"--slot", "--slot"}), "--slot");
  EXPECT_EQ(valueIn({"--slot", "--slot=x"}), "--slot=x");
  EXPECT_EQ(valueIn({"--slot", " "}), " ");
}

TEST(CommandFlag, IsAbsentWhenTheValueIsMissingOrEmpty) {
  EXPECT_EQ(valueIn({}), std::nullopt);
  EXPECT_EQ(valueIn({"--slot"}), std::nullopt);
  EXPECT_EQ(valueIn({"--slot", ""}), std::nullopt);
  EXPECT_EQ(valueIn({"--slot="}), std::nullopt);
}

TEST(CommandFlag, LetsTheFirstMatchDecide) {
  EXPECT_EQ(valueIn({"--slot", "a", "--slot", "b"}), "a");
  EXPECT_EQ(valueIn({"--slot=a", "--slot=b"}), "a");
  EXPECT_EQ(valueIn({"--slot=", "--slot", "b"}), std::nullopt);
  EXPECT_EQ(valueIn({"--slot", "", "--slot=b"}), std::nullopt);
}

TEST(CommandFlag, PassesOverEverythingElse) {
  EXPECT_EQ(valueIn({"--slotx", "a", "--slots=b", "-slot", "c", "slot=d", "--SLOT=e", "", "--slo"}),
            std::nullopt);
  EXPECT_EQ(valueIn({"positional", "--other", "--slotx=1", "--slot=last"}), "last");
  EXPECT_EQ(valueIn({"--other", "--slot", "found"}), "found");
}

struct Parsed {
  std::string event;
  Decision decision;
  std::string complaint;  ///< what standard error was told
};

Parsed parsed(std::vector<std::string> arguments, std::string_view harness = "codex") {
  const unit::CommandLine line(std::move(arguments));
  const unit::Captured captured(STDERR_FILENO);
  const std::string_view event = EventFlag::parse(line.arguments());
  const Decision decision = DecisionFlag::parse(line.arguments(), *Harnesses::named(harness));
  return {.event = std::string(event), .decision = decision, .complaint = captured.text()};
}

TEST(AnswerFlags, ChangeNothingUnlessTheyAreGiven) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {"--slot", "recall"},
                                                    {"--event"},
                                                    {"--event=", "--decision="},
                                                    {"--eventSubagentStart"},
                                                    {"--decision"}}) {
    const Parsed result = parsed(arguments);
    EXPECT_EQ(result.event, "UserPromptSubmit");
    EXPECT_EQ(result.decision, Decision::none);
    EXPECT_EQ(result.complaint, "");
  }
}

TEST(AnswerFlags, AreReadLikeTheOtherFlags) {
  for (const char* const event : {"SubagentStart", "SessionStart", "UserPromptSubmit"}) {
    for (const Parsed& result :
         {parsed({"--event", event, "--decision", "allow"}),
          parsed({"--decision=allow", std::string("--event=") + event, "--event=x"})}) {
      EXPECT_EQ(result.event, event);
      EXPECT_EQ(result.decision, Decision::allow);
      EXPECT_EQ(result.complaint, "");
    }
  }
}

TEST(AnswerFlags, PassOverWhatTheyDoNotKnowAndSaySo) {
  const Parsed result = parsed({"--event", "subagentStart", "--decision=deny"});
  EXPECT_EQ(result.event, "UserPromptSubmit");
  EXPECT_EQ(result.decision, Decision::none);
  EXPECT_EQ(result.complaint,
            "quillstead-hook: unknown event \"subagentStart\" \xE2\x80\x94 going on without. Known "
            "events: UserPromptSubmit, SubagentStart, SessionStart.\n"
            "quillstead-hook: unknown decision \"deny\" \xE2\x80\x94 going on without. Known "
            "decisions: allow.\n");
}

TEST(AnswerFlags, GiveNoDecisionToAHarnessThatTakesNone) {
  for (const std::string harness : {"claude-code", "cursor"}) {
    const Parsed result = parsed({"--decision=allow"}, harness);
    EXPECT_EQ(result.decision, Decision::none);
    EXPECT_EQ(result.complaint, "quillstead-hook: no decision is given to " + harness +
                                    " \xE2\x80\x94 going on without.\n");
  }
  EXPECT_EQ(parsed({"--decision=allow"}, "opencode").decision, Decision::allow);
}

}  // namespace
}  // namespace quillstead::hook
