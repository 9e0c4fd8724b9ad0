#include "hook/Lanes/RulesLane.h"
#include "support/JSON/Writer.h"
#include "unit/helpers/JSONValues.h"
#include "unit/helpers/Server.h"

#include <gtest/gtest.h>

namespace quillstead::hook::RulesLane {
namespace {

using Fields = std::vector<std::string>;

constexpr std::string_view tool = "rules_get";
constexpr Wanted wholeRules{};
constexpr Wanted card{.card = true, .cardCeiling = {}, .cardHeadCeiling = {}};

std::string argumentsFor(const HookInput& input, const Wanted& wanted) {
  return JSON::write(arguments(input, wanted), JSON::Slashes::plain);
}

LaneOutcome ran(std::string_view meta, const Wanted& wanted = wholeRules,
                std::string_view text = "the rules") {
  const unit::Server server;
  server.answer(tool, text, meta);
  return run({}, wanted, server.client(), unit::ampleDeadline());
}

MCPClient sleeper() { return {.executable = unit::child("SleepsForever"), .clientName = "codex"}; }

/// How long the lane waits for a server that never answers.
Seconds waited(Seconds allowance, const Wanted& wanted) {
  return unit::timeOf([&] {
    const Deadline deadline{.start = OS::MonotonicClock::now(), .allowance = allowance};
    EXPECT_EQ(run({}, wanted, sleeper(), deadline).fields, Fields{"rules=MISS:timeout"});
  });
}

// --- Arguments

TEST(RulesLane, SendsWhatThereIsButNeverThePrompt) {
  EXPECT_EQ(argumentsFor({.prompt = "p", .cwd = "/c", .sessionID = "s", .transcriptPath = "/t"},
                         wholeRules),
            R"({"cwd":"/c","session_id":"s","transcript_path":"/t"})");
  EXPECT_EQ(argumentsFor({}, wholeRules), "{}");
}

TEST(RulesLane, AsksForACardAndItsCeilingsInCardModeOnly) {
  const HookInput input{.prompt = "p", .cwd = "/c", .sessionID = {}, .transcriptPath = {}};
  EXPECT_EQ(argumentsFor(input, card), R"({"cwd":"/c","card":true})");
  EXPECT_EQ(argumentsFor(input, {.card = true, .cardCeiling = 5000, .cardHeadCeiling = {}}),
            R"({"cwd":"/c","card":true,"card_ceiling":5000})");
  EXPECT_EQ(argumentsFor(input, {.card = true, .cardCeiling = {}, .cardHeadCeiling = 10000}),
            R"({"cwd":"/c","card":true,"card_head_ceiling":10000})");
  EXPECT_EQ(argumentsFor(input, {.card = true, .cardCeiling = 1, .cardHeadCeiling = 2}),
            R"({"cwd":"/c","card":true,"card_ceiling":1,"card_head_ceiling":2})");
  EXPECT_EQ(argumentsFor(input, {.card = false, .cardCeiling = 1, .cardHeadCeiling = 2}),
            R"({"cwd":"/c"})");
}

TEST(RulesLane, CallsItsToolWithItsArguments) {
  const unit::Server server;
  run({.prompt = "p", .cwd = "/c", .sessionID = "s", .transcriptPath = {}},
      {.card = true, .cardCeiling = 5000, .cardHeadCeiling = {}}, server.client(),
      unit::ampleDeadline());
  EXPECT_EQ(JSON::write(server.arguments(tool), JSON::Slashes::plain),
            R"({"cwd":"/c","session_id":"s","card":true,"card_ceiling":5000})");
}

// --- Validation

TEST(RulesLane, TakesASpanOfAtLeast1) {
  const auto spanIn = [](const std::string& json) {
    const auto list = unit::documentIn("[" + json + "]");
    return validSpan(list.root().array()->front());
  };
  EXPECT_EQ(spanIn("1"), 1);
  EXPECT_EQ(spanIn("1000000"), 1'000'000) << "no upper bound";
  for (const char* value : {"0", "-1", "7.0", "7e0", "true", "false", "null", R"("7")", "[7]"}) {
    EXPECT_EQ(spanIn(value), std::nullopt) << value;
  }
  EXPECT_EQ(validSpan(JSON::View()), std::nullopt);
}

// --- The whole lane

TEST(RulesLane, BringsTheRulesWithTheSpanOfTheirIndex) {
  const LaneOutcome outcome = ran(R"({"quillstead/replyKind":"rules","quillstead/indexSpan":7})",
                                  wholeRules, " rules as they are \n");
  EXPECT_EQ(outcome.block, " rules as they are \n");
  EXPECT_EQ(outcome.indexSpan, 7);
  EXPECT_EQ(outcome.fields, Fields{"rules=1"});
  EXPECT_FALSE(outcome.declineFast);
  EXPECT_EQ(outcome.cardCount, std::nullopt);
  EXPECT_EQ(outcome.cardSpans, std::nullopt);
  EXPECT_EQ(outcome.shortcut, std::nullopt);
  EXPECT_EQ(outcome.justEnded, std::nullopt);
}

TEST(RulesLane, KeepsRulesWhoseIndexSpanIsUnsound) {
  for (const char* span : {"7.0", "true", "0", "-3", "null", R"("7")"}) {
    const LaneOutcome outcome =
        ran(std::string(R"({"quillstead/replyKind":"rules","quillstead/indexSpan":)") + span + "}");
    EXPECT_EQ(outcome.block, "the rules");
    EXPECT_EQ(outcome.indexSpan, std::nullopt) << span;
    EXPECT_EQ(outcome.fields, Fields{"rules=1"});
  }
}

TEST(RulesLane, TellsThatThereAreNoRules) {
  const LaneOutcome outcome = ran(R"({"quillstead/replyKind":"empty","quillstead/indexSpan":7})");
  EXPECT_EQ(outcome.fields, Fields{"rules=0"});
  EXPECT_EQ(outcome.block, std::nullopt);
  EXPECT_EQ(outcome.indexSpan, std::nullopt);
}

TEST(RulesLane, RefusesRulesOfNoKindOrText) {
  struct Case {
    const char* meta;
    const char* text;
  };
  for (const Case& one : {Case{"{}", "t"}, Case{R"({"quillstead/replyKind":"rules"})", ""},
                          Case{R"({"quillstead/replyKind":"Rules"})", "t"},
                          Case{R"({"quillstead/replyKind":"cards"})", "t"},
                          Case{R"({"quillstead/replyKind":true})", "t"},
                          Case{R"({"quillstead/indexSpan":7})", "t"}}) {
    const LaneOutcome outcome = ran(one.meta, wholeRules, one.text);
    EXPECT_EQ(outcome.fields, Fields{"rules=MISS:no-kind"}) << one.meta;
    EXPECT_EQ(outcome.block, std::nullopt);
    EXPECT_EQ(outcome.indexSpan, std::nullopt);
  }
}

TEST(RulesLane, TellsInCardModeHowTheServerAnswered) {
  struct Case {
    const char* meta;
    const char* field;
  };
  for (const Case& one : {
           Case{R"("quillstead/rulesLane":"card")", "card=1"},
           Case{R"("quillstead/rulesLane":"card","quillstead/card":"whole")", "card=1"},
           Case{R"("quillstead/rulesLane":"card","quillstead/card":7)", "card=1"},
           Case{R"("quillstead/rulesLane":"card","quillstead/card":"pointer")", "card=pointer"},
           Case{R"("quillstead/card":"pointer")", "card=miss"},
           Case{R"("quillstead/rulesLane":"rules","quillstead/card":"pointer")", "card=miss"},
           Case{R"("quillstead/rulesLane":"Card")", "card=miss"},
           Case{R"("quillstead/rulesLane":true)", "card=miss"},
           Case{R"("other":1)", "card=miss"},
       }) {
    for (const auto& [kind, field] :
         {std::pair{"rules", "rules=1"}, {"empty", "rules=0"}, {"x", "rules=MISS:no-kind"}}) {
      const std::string meta =
          std::string(R"({"quillstead/replyKind":")") + kind + "\"," + one.meta + "}";
      EXPECT_EQ(ran(meta, card).fields, (Fields{one.field, field})) << meta;
    }
    EXPECT_EQ(ran(std::string(R"({"quillstead/replyKind":"rules",)") + one.meta + "}").fields,
              Fields{"rules=1"})
        << "outside card mode";
  }
}

TEST(RulesLane, GivesExactlyOneFieldWhenTheCallFails) {
  const unit::Server server;
  server.answer(tool, R"({"isError":true,"_meta":{"quillstead/replyKind":"rules",
      "quillstead/rulesLane":"card","quillstead/indexSpan":3}})");
  const LaneOutcome outcome = run({}, card, server.client(), unit::ampleDeadline());
  EXPECT_EQ(outcome.fields, Fields{"rules=MISS:no-envelope"});
  EXPECT_EQ(outcome.indexSpan, std::nullopt);
  EXPECT_FALSE(outcome.declineFast);
}

TEST(RulesLane, PassesOnThatTheServerIsBroken) {
  const LaneOutcome missing =
      run({}, card, {.executable = "/nothing/here", .clientName = "codex"}, unit::ampleDeadline());
  EXPECT_EQ(missing.fields, Fields{"rules=MISS:no-envelope"});
  EXPECT_TRUE(missing.declineFast);

  const unit::Server server;
  server.exitWith(tool, 1);
  EXPECT_TRUE(run({}, wholeRules, server.client(), unit::ampleDeadline()).declineFast);
}

// --- Time

TEST(RulesLane, MayTakeOnlyOneAndAHalfSecondsOfALongerDeadline) {
  EXPECT_EQ(longestLeash, Seconds(1.5));
  const Seconds taken = waited(Seconds(60), wholeRules);
  EXPECT_GE(taken, Seconds(1.5));
  EXPECT_LT(taken, Seconds(30));
}

TEST(RulesLane, IsCappedInCardModeToo) {
  const Seconds taken = waited(Seconds(60), card);
  EXPECT_GE(taken, Seconds(1.5));
  EXPECT_LT(taken, Seconds(30));
}

TEST(RulesLane, MayTakeNoMoreThanTheDeadlineLeaves) {
  const Seconds taken = waited(Seconds(0.3), wholeRules);
  EXPECT_GT(taken, Seconds(0.29));
  EXPECT_LT(taken, Seconds(1.5));
}

TEST(RulesLane, DoesNotDeclineAfterATimeout) {
  const Deadline deadline{.start = OS::MonotonicClock::now(), .allowance = Seconds(0.05)};
  EXPECT_FALSE(run({}, wholeRules, sleeper(), deadline).declineFast);
}

TEST(RulesLane, StartsNothingWhenTheDeadlineIsSpent) {
  const unit::Server server;
  const Deadline spent{.start = OS::MonotonicClock::now() - std::chrono::seconds(3),
                       .allowance = Seconds(2.5)};
  EXPECT_EQ(run({}, wholeRules, server.client(), spent).fields, Fields{"rules=MISS:timeout"});
  EXPECT_FALSE(server.wasCalled(tool));
}

}  // namespace
}  // namespace quillstead::hook::RulesLane
