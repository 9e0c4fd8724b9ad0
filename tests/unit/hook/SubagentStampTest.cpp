#include "helpers/StampedDocument.h"
#include "hook/SubagentStamp.h"
#include "support/JSON/Writer.h"
#include "unit/helpers/JSONValues.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>

namespace quillstead::hook::SubagentStamp {
namespace {

std::string payload(const std::string& tool, const std::string& agent, const std::string& input) {
  return R"({"tool_name":")" + tool + R"(","agent_id":)" + agent + R"(,"tool_input":)" + input +
         "}";
}

std::string stamped(const std::string& input) {
  return R"({"hookSpecificOutput":{"hookEventName":"PreToolUse","updatedInput":)" + input + "}}";
}

std::optional<std::string> answerTo(std::string payload) {
  return stampedDocument(std::move(payload), answer);
}

/// What `serve` prints to a payload; fails the test unless it exits with status 0 and says nothing
/// to standard error.
std::string printedTo(const std::string& input) {
  const unit::ForkedRun run = unit::inForkedProcess(
      [] { PretoolAnswer::serve(unit::EnvironmentOf{"HOME=/nowhere"}, answer, Decision::none); },
      input);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.standardError, "");
  return run.standardOutput;
}

TEST(SubagentStamp, StampsTheSubagent) {
  EXPECT_EQ(answerTo(R"({"tool_name":"mcp__quillstead__memory_add","agent_id":"a7",
                       "tool_input":{"text":"x"}})"),
            stamped(R"({"text":"x","_quillstead_subagent":"a7"})"));
}

TEST(SubagentStamp, SaysThatTheCallIsAllowedWhenItIsToldTo) {
  const std::string call = payload("mcp__quillstead__grab", R"("a7")", "{}");
  EXPECT_EQ(stampedDocument(call, answer, Decision::allow),
            R"({"hookSpecificOutput":{"hookEventName":"PreToolUse",)"
            R"("updatedInput":{"_quillstead_subagent":"a7"},"permissionDecision":"allow"}})");
  EXPECT_EQ(stampedDocument(payload("Bash", R"("a7")", "{}"), answer, Decision::allow),
            std::nullopt)
      << "a call that is not stamped is not decided on";
}

TEST(SubagentStamp, StampsEveryToolWhoseNameBeginsWithThePrefix) {
  EXPECT_EQ(toolPrefix.size(), 17U);
  for (const char* tool :
       {"mcp__quillstead__grab", "mcp__quillstead__", "mcp__quillstead__any/thing"}) {
    EXPECT_EQ(answerTo(payload(tool, R"("a7")", "{}")), stamped(R"({"_quillstead_subagent":"a7"})"))
        << tool;
  }
  for (const char* tool : {"mcp__other__grab", "MCP:grab", "mcp__quillstead_grab",
                           "mcp__quillstead", "MCP__quillstead__grab", " mcp__quillstead__grab", "",
                           "Task", "mcp__plugin_x_quillstead__grab"}) {
    EXPECT_EQ(answerTo(payload(tool, R"("a7")", "{}")), std::nullopt) << tool;
  }
}

TEST(SubagentStamp, LetsACallThroughThatItCannotStamp) {
  const std::string tool = "mcp__quillstead__grab";
  for (const std::string& one : {
           R"({"tool_name":")" + tool + R"(","tool_input":{}})",
           R"({"tool_name":")" + tool + R"(","session_id":"s","agent_type":"t","tool_input":{}})",
           payload(tool, R"("")", "{}"),
           payload(tool, R"("  ")", "{}"),
           payload(tool, R"("\t\u2029")", "{}"),
           payload(tool, "7", "{}"),
           payload(tool, "null", "{}"),
           payload(tool, R"({"id":"a"})", "{}"),
           payload(tool, R"("a7")", R"("text")"),
           payload(tool, R"("a7")", "[]"),
           payload(tool, R"("a7")", "null"),
           R"({"tool_name":")" + tool + R"(","agent_id":"a7"})",
           std::string(R"({"agent_id":"a7","tool_input":{}})"),
           std::string(R"({"tool_name":true,"agent_id":"a7","tool_input":{}})"),
           std::string("{}"),
           std::string("[]"),
           std::string(""),
           std::string("not JSON"),
           payload(tool, R"("a7")", "{}") + "]",
       }) {
    EXPECT_EQ(answerTo(one), std::nullopt) << one;
  }
}

TEST(SubagentStamp, InsertsTheIdentifierUntrimmed) {
  EXPECT_EQ(answerTo(payload("mcp__quillstead__grab", R"(" a7 ")", "{}")),
            stamped(R"({"_quillstead_subagent":" a7 "})"));
}

TEST(SubagentStamp, OverwritesAStampThatTheAgentPutThere) {
  for (const char* forged :
       {R"({"_quillstead_subagent":"x","q":1})", R"({"\u005fquillstead_subagent":"x","q":1})",
        R"({"_quillstead_subagent":null,"q":1})",
        R"({"_quillstead_subagent":"x","q":0,"_quillstead_subagent":"y","q":1})"}) {
    EXPECT_EQ(answerTo(payload("mcp__quillstead__grab", R"("a7")", forged)),
              stamped(R"({"_quillstead_subagent":"a7","q":1})"))
        << forged;
  }
}

TEST(SubagentStamp, GoesByTheLastOfARepeatedIdentityKey) {
  EXPECT_EQ(answerTo(R"({"tool_name":"mcp__quillstead__x","agent_id":"a1","agent_id":"a2",
                       "tool_input":{}})"),
            stamped(R"({"_quillstead_subagent":"a2"})"));
  EXPECT_EQ(answerTo(R"({"tool_name":"mcp__quillstead__x","agent_id":"a1","agent_id":"",
                       "tool_input":{}})"),
            std::nullopt);
  EXPECT_EQ(answerTo(R"({"tool_name":"other","tool_name":"mcp__quillstead__x","agent_id":"a1",
                       "tool_input":{}})"),
            stamped(R"({"_quillstead_subagent":"a1"})"));
}

TEST(SubagentStamp, ReadsNeitherTheEventNorTheSessionNorTheAgentsType) {
  EXPECT_EQ(answerTo(R"({"hook_event_name":"PostToolUse","session_id":5,"agent_type":[],
                       "tool_name":"mcp__quillstead__x","agent_id":"a","tool_input":{}})"),
            stamped(R"({"_quillstead_subagent":"a"})"));
}

TEST(SubagentStamp, KeepsNumbersOrderAndTextsOfTheInput) {
  const std::string input =
      R"({"z":123456789012345678901234567890,"a":0.1,"n":[1e300,-0,1.50],"e":{},"l":[],"p":"a/b",)"
      "\"\xC3\xA9\":\"\\u0000\xE2\x80\xA8\"";
  EXPECT_EQ(answerTo(payload("mcp__quillstead__x", R"("a7")", input + "}")),
            stamped(input + R"(,"_quillstead_subagent":"a7"})"));
}

TEST(SubagentStamp, LeavesEverythingElseOfAnyInputAsItWas) {
  unit::ValueGenerator generator(53);
  for (int i = 0; i < 2000; ++i) {
    const JSON::Object input = generator.object(5);
    const std::string document = JSON::write(
        JSON::objectOf(
            {{"agent_id", "a"}, {"tool_input", input}, {"tool_name", "mcp__quillstead__grab"}}),
        i % 2 == 0 ? JSON::Slashes::plain : JSON::Slashes::escaped);
    const auto answered = answerTo(document);
    ASSERT_TRUE(answered) << document;
    const JSON::Object object = unit::parsedObject(*answered);
    const JSON::Object* const output = JSON::objectOf(object.find("hookSpecificOutput"));
    ASSERT_TRUE(output && object.size() == 1 && output->size() == 2);
    ASSERT_TRUE(JSON::isText(output->find("hookEventName"), "PreToolUse"));
    const JSON::Object* const updated = JSON::objectOf(output->find("updatedInput"));
    ASSERT_TRUE(updated && JSON::isText(updated->find(key), "a"));
    ASSERT_TRUE(unit::areSame(unit::without(*updated, key), input)) << document;
  }
}

TEST(SubagentStamp, PrintsTheAnswerAndExactlyOneLineEnd) {
  EXPECT_EQ(printedTo(payload("mcp__quillstead__memory_add", R"("a7")", R"({"text":"x"})")),
            stamped(R"({"text":"x","_quillstead_subagent":"a7"})") + "\n");
}

TEST(SubagentStamp, PrintsAnEmptyObjectForEverythingElse) {
  for (const std::string& one :
       {std::string(""), std::string("{}"), std::string("no JSON"), std::string("[]"),
        payload("MCP:grab", R"("a7")", "{}"), payload("mcp__quillstead__x", R"("  ")", "{}"),
        payload("mcp__quillstead__x", R"("a7")", R"("text")")}) {
    EXPECT_EQ(printedTo(one), "{}\n") << one;
  }
}

}  // namespace
}  // namespace quillstead::hook::SubagentStamp
