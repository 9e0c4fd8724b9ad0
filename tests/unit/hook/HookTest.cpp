#include "hook/Harness/Harnesses.h"
#include "hook/Hook.h"
#include "unit/helpers/CommandLine.h"
#include "unit/helpers/JSONValues.h"
#include "unit/helpers/Server.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <sstream>

namespace quillstead::hook::Hook {
namespace {

using unit::ForkedRun;

constexpr std::string_view rulesBlock = "<user-rules>\nA\nIDX\n</user-rules>";
constexpr std::string_view rulesHead = "<user-rules>\nA\n</user-rules>";
constexpr std::string_view rulesIndex = "<user-rules>\nIDX\n</user-rules>";
constexpr std::string_view memoryBlock =
    "<quillstead-memory>\nhead\n\ncard one\n\ncard two\n</quillstead-memory>";

/// One run of the hook in a process of its own, with a server of the test's choosing and a log.
class HookRun : public ::testing::Test {
 protected:
  /// Both tools answer well; the rules are not asked for as a card.
  HookRun() {
    answerRules(rulesBlock, R"("quillstead/indexSpan":3)");
    server_.answer("memory_get_relevant", memoryBlock,
                   R"({"quillstead/replyKind":"cards","quillstead/cardCount":2,
                       "quillstead/cardSpans":[8,8]})");
  }

  void answerRules(std::string_view text, const std::string& more) const {
    server_.answer("rules_get", text, R"({"quillstead/replyKind":"rules",)" + more + "}");
  }

  [[nodiscard]] ForkedRun run(std::vector<std::string> arguments,
                              std::string_view payload = R"({"prompt":"p"})") const {
    const unit::CommandLine line(std::move(arguments));
    const unit::EnvironmentOf environment{"QUILLSTEAD_MCP_BIN=" + executable_,
                                          "QUILLSTEAD_HOOK_LOG=" + log_,
                                          "QUILLSTEAD_RULES_CARD=" + cardMode_, probe_};
    return unit::inForkedProcess([&] { _exit(Hook::run(line.arguments(), environment)); }, payload);
  }

  /// The text that a run of OpenCode at a slot injects, or what else it prints.
  [[nodiscard]] std::string injectedAt(const std::string& slot,
                                       std::string_view payload = R"({"prompt":"p"})") const {
    const ForkedRun result =
        run(slot.empty() ? std::vector<std::string>{"--harness=opencode"}
                         : std::vector<std::string>{"--harness=opencode", "--slot", slot},
            payload);
    EXPECT_EQ(result.status, 0);
    const JSON::Object document = unit::parsedObject(result.standardOutput);
    const std::string* const text = JSON::textOf(document.find("context"));
    return text ? *text : result.standardOutput;
  }

  /// The trail in the one telemetry line; checks what stands around it.
  [[nodiscard]] std::string trail() const {
    const std::string line = std::filesystem::exists(log_) ? unit::contentsOf(log_) : "no log";
    std::istringstream words(line);
    std::string timestamp;
    std::int64_t total = 0;
    std::string unit;
    words >> timestamp >> total >> unit;
    const std::size_t segment = line.find(" | ");
    const bool isOneLine = std::count(line.begin(), line.end(), '\n') == 1 && line.back() == '\n';
    if (unit != "ms" || segment == std::string::npos || !isOneLine) return "not a line: " + line;

    EXPECT_EQ(timestamp.size(), 29U) << line;
    EXPECT_TRUE(timestamp.ends_with("+00:00")) << line;
    stages_.clear();
    std::istringstream pieces(line.substr(segment + 3));
    std::string name;
    std::int64_t sum = 0;
    for (std::int64_t milliseconds = 0; pieces >> name >> milliseconds; sum += milliseconds) {
      stages_ += (stages_.empty() ? "" : " ") + name;
    }
    EXPECT_EQ(sum, total) << line;
    const std::size_t start = line.find("ms ") + 3;
    return line.substr(start, segment - start);
  }

  unit::Server server_;
  unit::TemporaryDirectory directory_;
  std::string log_ = directory_ / "log";
  std::string executable_ = server_.executable();
  std::string cardMode_ = "0";
  std::string probe_ = "OTHER=1";
  mutable std::string stages_;  ///< the names of the stages in the line that `trail` read last
};

std::string fenced(const std::vector<std::string_view>& texts) {
  std::string all;
  for (const std::string_view text : texts) all += (all.empty() ? "" : "\n\n") + std::string(text);
  return all;
}

// --- The command line

constexpr std::string_view refusal = "{\"continue\":true}\n";
const std::string knownHarnesses = "Known harnesses: claude-code, codex, cursor, opencode.\n";
const std::string knownSlots = "Known slots: rules, index, recall, pretool.\n";

TEST_F(HookRun, RefusesAMissingHarness) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {"--harness="},
                                                    {"--harness", ""},
                                                    {"--harness"},
                                                    {"--slot", "recall"},
                                                    {"--harness=", "--harness", "codex"}}) {
    const ForkedRun result = run(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardOutput, refusal);
    EXPECT_EQ(result.standardError,
              "quillstead-hook: no --harness <name> given \xE2\x80\x94 injecting nothing. " +
                  knownHarnesses);
  }
  EXPECT_FALSE(std::filesystem::exists(log_));
}

TEST_F(HookRun, RefusesAnUnknownHarness) {
  const ForkedRun result = run({"--harness", "Codex", "--slot", "recall"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.standardOutput, refusal);
  EXPECT_EQ(result.standardError,
            "quillstead-hook: unknown harness \"Codex\" \xE2\x80\x94 injecting nothing. " +
                knownHarnesses);
}

TEST_F(HookRun, RefusesAnUnknownSlotWithTheSameAnswerForEveryHarness) {
  for (const std::string_view harness : Harnesses::knownNames()) {
    const ForkedRun result = run({"--harness", std::string(harness), "--slot=Recall"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardOutput, refusal);
    EXPECT_EQ(
        result.standardError,
        "quillstead-hook: unknown slot \"Recall\" \xE2\x80\x94 injecting nothing. " + knownSlots);
  }
}

TEST_F(HookRun, DoesNotArmTheBeltWhereItRefuses) {
  const unit::CommandLine none({});
  const ForkedRun result = unit::inForkedProcess([&] {
    std::signal(SIGSEGV, SIG_DFL);
    Hook::run(none.arguments(), unit::EnvironmentOf{});
    std::raise(SIGSEGV);
  });
  EXPECT_EQ(result.status, -SIGSEGV);
}

TEST_F(HookRun, TakesAnEmptySlotForNoSlot) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--harness=codex", "--slot="},
        {"--harness=codex", "--slot", ""},
        {"--harness=codex", "--slot"},
        {"--harness=codex"}}) {
    std::filesystem::remove(log_);
    EXPECT_EQ(run(arguments).standardError, "");
    EXPECT_EQ(trail(), "rules=1 cards=2");
  }
}

TEST_F(HookRun, TakesBothFormsOfTheSlotForTheSame) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--harness=codex", "--slot=index"},
        {"--slot", "index", "--harness", "codex"}}) {
    std::filesystem::remove(log_);
    static_cast<void>(run(arguments));
    EXPECT_EQ(trail(), "slot=index rules=1 index=1");
  }
}

TEST_F(HookRun, HandsThePretoolSlotToTheSessionStampForCursorAndElseToTheSubagentStamp) {
  const std::string payload =
      R"({"tool_name":"mcp__quillstead__x","agent_id":"a","session_id":"s","tool_input":{}})";
  const std::string cursorPayload = R"({"tool_name":"MCP:grab","session_id":"s","tool_input":{}})";
  for (const std::string_view harness : Harnesses::knownNames()) {
    const std::vector<std::string> arguments{"--harness", std::string(harness), "--slot",
                                             "pretool"};
    const bool isCursor = harness == "cursor";
    EXPECT_EQ(run(arguments, payload).standardOutput,
              isCursor ? "{}\n"
                       : "{\"hookSpecificOutput\":{\"hookEventName\":\"PreToolUse\","
                         "\"updatedInput\":{\"_quillstead_subagent\":\"a\"}}}\n");
    EXPECT_EQ(run(arguments, cursorPayload).standardOutput,
              isCursor ? "{\"updated_input\":{\"_quillstead_session\":\"s\"}}\n" : "{}\n");
  }
  EXPECT_FALSE(std::filesystem::exists(log_));
}

// --- What each slot injects and logs

TEST_F(HookRun, InjectsWholeRulesAndMemoryWithoutASlot) {
  EXPECT_EQ(injectedAt(""), fenced({rulesBlock, memoryBlock}));
  EXPECT_EQ(trail(), "rules=1 cards=2");
  EXPECT_EQ(stages_, "parse rules cards compose write residual");
}

TEST_F(HookRun, InjectsTheHeadOfTheRulesAtTheRulesSlot) {
  EXPECT_EQ(injectedAt("rules"), rulesHead);
  EXPECT_EQ(trail(), "slot=rules rules=1");
  EXPECT_EQ(stages_, "parse rules compose write residual");
  EXPECT_FALSE(server_.wasCalled("memory_get_relevant"));
}

TEST_F(HookRun, InjectsWholeRulesAtTheRulesSlotWhenTheyDoNotSplit) {
  for (const char* span : {R"("quillstead/indexSpan":4)", R"("quillstead/indexSpan":null)"}) {
    answerRules(rulesBlock, span);
    EXPECT_EQ(injectedAt("rules"), rulesBlock);
  }
}

TEST_F(HookRun, InjectsTheIndexAtTheIndexSlot) {
  EXPECT_EQ(injectedAt("index"), rulesIndex);
  EXPECT_EQ(trail(), "slot=index rules=1 index=1");
}

TEST_F(HookRun, InjectsNothingAtTheIndexSlotWithoutAnIndexSpan) {
  answerRules(rulesBlock, R"("quillstead/indexSpan":3.0)");
  EXPECT_EQ(injectedAt("index"), "{}\n");
  EXPECT_EQ(trail(), "slot=index rules=1 index=0");
}

TEST_F(HookRun, InjectsNothingAtTheIndexSlotWhenTheSplitFails) {
  answerRules(rulesBlock, R"("quillstead/indexSpan":4)");
  EXPECT_EQ(injectedAt("index"), "{}\n");
  EXPECT_EQ(trail(), "slot=index rules=1 index=MISS:no-span");
}

TEST_F(HookRun, InjectsTheMemoryAloneAtTheRecallSlotButRunsTheRulesLaneToo) {
  EXPECT_EQ(injectedAt("recall"), memoryBlock);
  EXPECT_EQ(trail(), "slot=recall rules=1 cards=2");
  EXPECT_EQ(stages_, "parse rules cards compose write residual");
}

TEST_F(HookRun, SkipsTheMemoryForABlankPrompt) {
  for (const char* payload : {R"({"prompt":" \n\t "})", "{}", R"({"prompt":5})"}) {
    std::filesystem::remove(log_);
    EXPECT_EQ(injectedAt("recall", payload), "{}\n");
    EXPECT_EQ(trail(), "slot=recall rules=1");
    EXPECT_EQ(stages_, "parse rules compose write residual");
  }
  EXPECT_FALSE(server_.wasCalled("memory_get_relevant"));
}

TEST_F(HookRun, SkipsTheMemoryWhenTheServerIsBroken) {
  server_.exitWith("rules_get", 1);
  EXPECT_EQ(injectedAt("recall"), "{}\n");
  EXPECT_EQ(trail(), "slot=recall rules=MISS:no-envelope cards=MISS:declined");
  EXPECT_EQ(stages_, "parse rules compose write residual");
  EXPECT_FALSE(server_.wasCalled("memory_get_relevant"));
}

TEST_F(HookRun, AsksForTheMemoryWhenTheServerMerelyHadNoRules) {
  server_.answer("rules_get", R"({"isError":true})");
  EXPECT_EQ(injectedAt("recall"), memoryBlock);
  EXPECT_EQ(trail(), "slot=recall rules=MISS:no-envelope cards=2");
}

TEST_F(HookRun, AsksForACardUnlessToldNotTo) {
  cardMode_ = " Yes ";
  static_cast<void>(run({"--harness=cursor", "--slot=rules"}));
  EXPECT_EQ(trail(), "slot=rules card=miss rules=1");
  EXPECT_TRUE(unit::areEquivalent(server_.arguments("rules_get"),
                                  JSON::objectOf({{"card", true}, {"card_ceiling", 5000}})));
}

// --- What the command line changes in an answer

TEST_F(HookRun, BringsTheRulesToAnEventWithoutAPromptAndNamesIt) {
  const std::string payload =
      R"({"hook_event_name":"SubagentStart","session_id":"s","cwd":"/","agent_id":"a"})";
  for (const std::string harness : {"claude-code", "codex"}) {
    for (const std::string event : {"SubagentStart", "SessionStart"}) {
      const ForkedRun result =
          run({"--harness", harness, "--slot", "rules", "--event", event}, payload);
      EXPECT_TRUE(unit::areEquivalent(
          unit::parsed(result.standardOutput),
          JSON::objectOf({{"hookSpecificOutput",
                           JSON::objectOf({{"hookEventName", event},
                                           {"additionalContext", std::string(rulesHead)}})}})));
    }
  }
  EXPECT_FALSE(server_.wasCalled("memory_get_relevant"));
}

TEST_F(HookRun, NamesNoSessionForAnEventWhoseReaderHasSeenNothingOfIt) {
  const std::string payload = R"({"session_id":"s","transcript_path":"/t","cwd":"/"})";
  static_cast<void>(run({"--harness=codex", "--slot=rules", "--event=SubagentStart"}, payload));
  EXPECT_TRUE(unit::areEquivalent(server_.arguments("rules_get"), JSON::objectOf({{"cwd", "/"}})));
}

TEST_F(HookRun, AnswersAsUsualForAnEventThatNobodyKnows) {
  const std::string usual = run({"--harness=codex", "--slot=rules"}).standardOutput;
  const ForkedRun result = run({"--harness=codex", "--slot=rules", "--event=Stop"});
  EXPECT_EQ(result.standardOutput, usual);
  EXPECT_NE(usual.find("UserPromptSubmit"), std::string::npos);
  EXPECT_NE(result.standardError.find("unknown event \"Stop\""), std::string::npos);
}

TEST_F(HookRun, AllowsAStampedCallOnlyWhereThatDoesNotGrantIt) {
  const std::string call =
      R"({"tool_name":"mcp__quillstead__grab","agent_id":"a","tool_input":{}})";
  const std::string stamped =
      R"({"hookSpecificOutput":{"hookEventName":"PreToolUse","updatedInput":)"
      R"({"_quillstead_subagent":"a"})";
  for (const std::string harness : {"claude-code", "codex", "opencode"}) {
    const std::string arguments = "--harness=" + harness;
    const bool isAllowed = harness != "claude-code";
    EXPECT_EQ(run({arguments, "--slot=pretool", "--decision=allow"}, call).standardOutput,
              stamped + (isAllowed ? R"(,"permissionDecision":"allow"}})" : "}}") + "\n");
    EXPECT_EQ(run({arguments, "--slot=pretool"}, call).standardOutput, stamped + "}}\n");
    EXPECT_EQ(run({arguments, "--slot=pretool", "--decision=allow"}, "{}").standardOutput, "{}\n");
  }
}

// --- What the budget changes

TEST_F(HookRun, ReplacesTheRulesFieldsWhenTheBudgetDropsThem) {
  answerRules(std::string(8'001, 'r'), R"("x":1)");
  EXPECT_EQ(run({"--harness=cursor", "--slot=rules"}).standardOutput, refusal);
  EXPECT_EQ(trail(), "slot=rules rules=MISS:over-budget");
}

TEST_F(HookRun, ReplacesTheIndexFieldOnlyWhenTheBudgetDropsTheIndex) {
  answerRules("<user-rules>\nA\n" + std::string(9'000, 'i') + "\n</user-rules>",
              R"("quillstead/indexSpan":9000)");
  EXPECT_EQ(run({"--harness=cursor", "--slot=index"}).standardOutput, refusal);
  EXPECT_EQ(trail(), "slot=index rules=1 index=MISS:over-budget");
}

TEST_F(HookRun, LogsTrimmedCardsADroppedShortcutAndAKeptNoteInOrder) {
  const std::string longCard(7'000, 'c');
  const std::string shortcut = "<quillstead-shortcut>" + std::string(9'000, 's');
  server_.answer("memory_get_relevant",
                 "<quillstead-memory>\n\n\nsmall\n\n" + longCard + "\n\n" + longCard +
                     "\n</quillstead-memory>",
                 R"({"quillstead/replyKind":"cards","quillstead/cardCount":3,
                     "quillstead/cardSpans":[5,7000,7000],"quillstead/now":"<quillstead-now>n",
                     "quillstead/shortcut":")" +
                     shortcut + "\"}");
  const ForkedRun result = run({"--harness=cursor", "--slot=recall"});
  const JSON::Object document = unit::parsedObject(result.standardOutput);
  EXPECT_TRUE(JSON::isText(document.find("additional_context"),
                           fenced({"<quillstead-now>n", "<quillstead-memory>\n\n\nsmall\n\n" +
                                                            longCard + "\n</quillstead-memory>"})));
  EXPECT_EQ(trail(), "slot=recall rules=1 shortcut=MISS:over-budget cards=3 trimmed=1 now=1");
}

// --- Silence

TEST_F(HookRun, PrintsTheSilenceAndLogsNothingForAPayloadThatIsRefused) {
  for (const HarnessAdapter* adapter : Harnesses::all()) {
    for (const std::string_view payload : {"", "not JSON", "[]"}) {
      const ForkedRun result =
          run({"--harness", std::string(adapter->name()), "--slot", "recall"}, payload);
      EXPECT_EQ(result.status, 0);
      const auto silence = adapter->silence();
      EXPECT_EQ(result.standardOutput, silence ? std::string(*silence) + "\n" : "");
    }
  }
  EXPECT_FALSE(std::filesystem::exists(log_));
  EXPECT_FALSE(server_.wasCalled("rules_get"));
}

TEST_F(HookRun, PrintsTheSilenceAndStillLogsWhenTheServerIsMissing) {
  executable_ = "/nothing/here";
  for (const HarnessAdapter* adapter : Harnesses::all()) {
    std::filesystem::remove(log_);
    const ForkedRun result = run({"--harness", std::string(adapter->name())});
    EXPECT_EQ(result.status, 0);
    const auto silence = adapter->silence();
    EXPECT_EQ(result.standardOutput, silence ? std::string(*silence) + "\n" : "");
    EXPECT_EQ(trail(), "rules=MISS:no-envelope cards=MISS:declined");
  }
}

TEST_F(HookRun, OverflowsTheStackOnlyWhenTheVariableIsExactly1) {
  probe_ = "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=1";
  const ForkedRun overflown = run({"--harness=opencode"});
  EXPECT_EQ(overflown.status, 0);
  EXPECT_EQ(overflown.standardOutput, "{}\n");
  EXPECT_FALSE(std::filesystem::exists(log_));
  probe_ = "QUILLSTEAD_HOOK_STACK_OVERFLOW_FOR_TESTS=true";
  EXPECT_EQ(injectedAt("recall"), memoryBlock);
}

TEST_F(HookRun, WarnsAboutAnotherDirectoryAndGoesOn) {
  const ForkedRun result = run({"--harness=opencode", "--slot=recall"},
                               R"({"prompt":"p","cwd":")" + directory_.path() + "\"}");
  EXPECT_TRUE(result.standardError.starts_with(
      "quillstead-hook: WARNING \xE2\x80\x94 the harness says cwd=" + directory_.path()));
  EXPECT_NE(result.standardOutput, "{}\n");
  EXPECT_TRUE(JSON::isText(server_.arguments("rules_get").find("cwd"), directory_.path()));
}

}  // namespace
}  // namespace quillstead::hook::Hook
