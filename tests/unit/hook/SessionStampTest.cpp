#include "helpers/StampedDocument.h"
#include "hook/SessionStamp.h"
#include "support/JSON/Writer.h"
#include "unit/helpers/JSONValues.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>

namespace quillstead::hook::SessionStamp {
namespace {

using unit::parsedObject;

std::string payload(const std::string& tool, const std::string& session, const std::string& input) {
  return R"({"tool_name":")" + tool + R"(","session_id":)" + session + R"(,"tool_input":)" + input +
         "}";
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

TEST(SessionStamp, StampsTheSessionAndLeavesSlashesUnescaped) {
  EXPECT_EQ(answerTo(R"({"tool_name":"MCP:grab","session_id":"c1","tool_input":{"q":"a/b"}})"),
            R"({"updated_input":{"q":"a/b","_quillstead_session":"c1"}})");
}

TEST(SessionStamp, HasNoPlaceForADecision) {
  EXPECT_EQ(stampedDocument(payload("MCP:grab", R"("c1")", "{}"), answer, Decision::allow),
            R"({"updated_input":{"_quillstead_session":"c1"}})");
}

TEST(SessionStamp, StampsExactlyTheMemoryServicesTools) {
  for (const char* tool : {"MCP:grab", "MCP:memory_add", "MCP:meeting_get"}) {
    EXPECT_EQ(answerTo(payload(tool, R"("c1")", "{}")),
              R"({"updated_input":{"_quillstead_session":"c1"}})")
        << tool;
  }
  for (const char* tool : {"MCP:memory_get_relevant", "mcp:grab", "grab", "MCP:grab ", "MCP:grabs",
                           "MCP:Grab", "", "task", "mcp__quillstead__grab"}) {
    EXPECT_EQ(answerTo(payload(tool, R"("c1")", "{}")), std::nullopt) << tool;
  }
}

TEST(SessionStamp, OverwritesAStampThatTheAgentPutThere) {
  for (
      const char* forged :
      {R"({"_quillstead_session":"x","q":1})", R"({"\u005fquillstead_session":"x","q":1})",
       R"({"_quillstead_session":{"deep":["x"]},"q":1})",
       R"({"_quillstead_session":"x","_quillstead_session":"y","q":1,"\u005fquillstead\u005Fsession":"z"})"}) {
    EXPECT_EQ(answerTo(payload("MCP:grab", R"("c1")", forged)),
              R"({"updated_input":{"_quillstead_session":"c1","q":1}})")
        << forged;
  }
}

TEST(SessionStamp, LetsACallThroughThatItCannotStamp) {
  for (const std::string& one : {
           std::string(R"({"tool_name":"MCP:grab","tool_input":{}})"),
           payload("MCP:grab", R"("")", "{}"),
           payload("MCP:grab", R"(" \n\u3000")", "{}"),
           payload("MCP:grab", "5", "{}"),
           payload("MCP:grab", "null", "{}"),
           payload("MCP:grab", R"(["c1"])", "{}"),
           payload("MCP:grab", R"("c1")", "[]"),
           payload("MCP:grab", R"("c1")", R"("text")"),
           payload("MCP:grab", R"("c1")", "null"),
           std::string(R"({"tool_name":"MCP:grab","session_id":"c1"})"),
           std::string(R"({"session_id":"c1","tool_input":{}})"),
           std::string(R"({"tool_name":5,"session_id":"c1","tool_input":{}})"),
           std::string("{}"),
           std::string("[]"),
           std::string(R"([{"tool_name":"MCP:grab"}])"),
           std::string(""),
           std::string("not JSON"),
           payload("MCP:grab", R"("c1")", "{}") + "x",
       }) {
    EXPECT_EQ(answerTo(one), std::nullopt) << one;
  }
}

TEST(SessionStamp, InsertsTheSessionUntrimmed) {
  EXPECT_EQ(answerTo(payload("MCP:grab", R"(" c1\n")", "{}")),
            R"({"updated_input":{"_quillstead_session":" c1\n"}})");
}

TEST(SessionStamp, GoesByTheLastOfARepeatedIdentityKey) {
  EXPECT_EQ(
      answerTo(R"({"tool_name":"MCP:grab","session_id":"c1","session_id":"c2","tool_input":{}})"),
      R"({"updated_input":{"_quillstead_session":"c2"}})");
  EXPECT_EQ(
      answerTo(R"({"tool_name":"MCP:grab","session_id":"c1","session_id":null,"tool_input":{}})"),
      std::nullopt);
  EXPECT_EQ(
      answerTo(R"({"tool_name":"MCP:grab","tool_name":"other","session_id":"c","tool_input":{}})"),
      std::nullopt);
}

TEST(SessionStamp, GivesTheParentTagToTheTaskTool) {
  EXPECT_EQ(answerTo(payload("Task", R"("c1")", R"({"prompt":"go"})")),
            R"({"updated_input":{"prompt":"go\n\n[qs-parent:c1]"}})");
  EXPECT_EQ(answerTo(payload("Task", R"("c1")", R"({"q":1})")), std::nullopt);
}

TEST(SessionStamp, DoesNotAskForTheEventsName) {
  EXPECT_EQ(answerTo(R"({"hook_event_name":"other","tool_name":"MCP:grab","session_id":"c1",
                       "tool_input":{}})"),
            R"({"updated_input":{"_quillstead_session":"c1"}})");
}

TEST(SessionStamp, KeepsNumbersOrderAndTextsOfTheInput) {
  const std::string input =
      R"({"z":123456789012345678901234567890,"a":0.1,"n":[1e300,-0,1.50],"e":{},"l":[],)"
      "\"\xC3\xA9\":\"\\u0000\xE2\x80\xA8\"";
  EXPECT_EQ(answerTo(payload("MCP:grab", R"("c1")", input + "}")),
            R"({"updated_input":)" + input + R"(,"_quillstead_session":"c1"}})");
}

TEST(SessionStamp, LeavesEverythingElseOfAnyInputAsItWas) {
  unit::ValueGenerator generator(52);
  for (int i = 0; i < 2000; ++i) {
    const JSON::Object input = generator.object(5);
    const std::string document = JSON::write(
        JSON::objectOf(
            {{"tool_name", "MCP:memory_add"}, {"tool_input", input}, {"session_id", "s"}}),
        i % 2 == 0 ? JSON::Slashes::plain : JSON::Slashes::escaped);
    const auto answered = answerTo(document);
    ASSERT_TRUE(answered) << document;
    const JSON::Object object = parsedObject(*answered);
    const JSON::Object* const updated = JSON::objectOf(object.find("updated_input"));
    ASSERT_TRUE(updated && object.size() == 1);
    ASSERT_TRUE(JSON::isText(updated->find(key), "s"));
    ASSERT_TRUE(unit::areSame(unit::without(*updated, key), input)) << document;
  }
}

TEST(SessionStamp, PrintsTheAnswerAndExactlyOneLineEnd) {
  EXPECT_EQ(printedTo(payload("MCP:grab", R"("c1")", R"({"q":"a/b"})")),
            "{\"updated_input\":{\"q\":\"a/b\",\"_quillstead_session\":\"c1\"}}\n");
}

TEST(SessionStamp, PrintsAnEmptyObjectForEverythingElse) {
  for (const std::string& one :
       {std::string(""), std::string("no JSON"), std::string("[]"), std::string("{}"),
        payload("grab", R"("c1")", "{}"), payload("MCP:grab", R"("  ")", "{}"),
        payload("Task", R"("c1")", "{}")}) {
    EXPECT_EQ(printedTo(one), "{}\n") << one;
  }
}

}  // namespace
}  // namespace quillstead::hook::SessionStamp
