#include "Encodings.h"
#include "HookTest.h"
#include "ToolCall.h"

#include <string>
#include <vector>

namespace quillstead {
namespace {

class Pretool : public HookTest {
 protected:
  void TearDown() override {
    EXPECT_TRUE(server.calls().empty());
    EXPECT_TRUE(logLines().empty());
  }

  [[nodiscard]] std::string answerOf(const Harness& harness, std::string_view payload) const {
    const HookEnd end = run(harness, "pretool", payload);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    return end.output;
  }

  void expectLetThrough(const Harness& harness, std::string_view payload) const {
    EXPECT_EQ(answerOf(harness, payload), "{}\n") << harness.name << " " << payload.substr(0, 200);
  }
};

TEST_F(Pretool, LetsThroughWhatIsNoPayload) {
  const std::string call = R"("tool_name":"MCP:grab","session_id":"s","tool_input":{})";
  const std::string other = R"("tool_name":"mcp__quillstead__x","agent_id":"a","tool_input":{})";
  const std::vector<std::string> table{
      "",
      " \n",
      "{}",
      "[]",
      "null",
      "\"text\"",
      "nonsense",
      "[{" + call + "}]",
      "{" + call,
      "{" + call + "}}",
      "{" + call + ",}",
      "{" + other,
      "{" + other + "} {}",
      "[{" + other + "}]",
      "{" + other + ",\"x\":\"\xff\"}",
      "{" + call + ",\"x\":\"\xff\"}",
      "{" + call + R"(,"x":"\ud800"})",
      "{" + other + R"(,"x":"\udfff"})",
      "{" + other + R"(,"x":)" + std::string(600, '[') + std::string(600, ']') + "}",
  };
  for (const Harness& harness : harnesses()) {
    for (const std::string& payload : table) expectLetThrough(harness, payload);
  }
}

TEST_F(Pretool, StampsTheMemoryServicesTools) {
  for (const ToolCall& call : toolCalls()) {
    EXPECT_THAT(
        answerOf(call.harness, call.payload(R"({"q":"a/b"})", "c1")),
        isPretoolAnswer(call.answer(R"({"q":"a/b",)" + jsonString(call.stampKey) + R"(:"c1"})")))
        << call.harness.name;
    EXPECT_THAT(answerOf(call.harness, call.payload("{}", "c1")),
                isPretoolAnswer(call.answer("{" + jsonString(call.stampKey) + R"(:"c1"})")));
  }
}

TEST_F(Pretool, StampsEachOfCursorsThreeTools) {
  for (const ToolCall& call : cursorCalls()) {
    EXPECT_THAT(answerOf(call.harness, call.payload("{}")),
                isPretoolAnswer(R"({"updated_input":{"_quillstead_session":"me"}})"))
        << call.tool;
  }
}

TEST_F(Pretool, StampsEveryToolBehindThePrefixForTheOthers) {
  for (ToolCall call : subagentCalls()) {
    for (const std::string tool : {"grab", "", "x/y", "memory_add__2", "\n"}) {
      call.tool = "mcp__quillstead__" + tool;
      EXPECT_THAT(answerOf(call.harness, call.payload("{}")),
                  isPretoolAnswer(call.answer(R"({"_quillstead_subagent":"me"})")));
    }
  }
}

TEST_F(Pretool, LetsOtherToolsThrough) {
  const std::vector<std::string> othersForCursor{
      "MCP:memory_get_relevant",
      "mcp:grab",
      "grab",
      "MCP:grab ",
      " MCP:grab",
      "MCP:Grab",
      "MCP:",
      "MCP:grab2",
      "MCP: grab",
      "",
      "task",
      "TASK",
      "Task ",
      "mcp__quillstead__grab",
  };
  for (ToolCall call : cursorCalls()) {
    for (const std::string& tool : othersForCursor) {
      call.tool = tool;
      expectLetThrough(call.harness, call.payload(R"({"prompt":"p"})"));
    }
  }
  const std::vector<std::string> othersForTheRest{
      "mcp__other__grab",
      "MCP:grab",
      "mcp__quillstead_",
      "mcp_quillstead__grab",
      "MCP__quillstead__",
      " mcp__quillstead__",
      "Bash",
      "",
      "Task",
      "xmcp__quillstead__grab",
      "mcp__Quillstead__grab",
      "mcp__plugin_q_quillstead__grab",
  };
  for (ToolCall call : subagentCalls()) {
    for (const std::string& tool : othersForTheRest) {
      call.tool = tool;
      expectLetThrough(call.harness, call.payload(R"({"prompt":"p"})"));
    }
  }
}

TEST_F(Pretool, LetsThroughAToolWhoseNameIsNoText) {
  for (const ToolCall& call : toolCalls()) {
    for (const std::string name : {"null", "1", "true", R"(["Task"])", R"({"a":"MCP:grab"})"}) {
      expectLetThrough(call.harness, R"({"tool_name":)" + name +
                                         R"(,"session_id":"s","agent_id":"a","tool_input":{}})");
    }
    expectLetThrough(call.harness, R"({"session_id":"s","agent_id":"a","tool_input":{}})");
  }
}

TEST_F(Pretool, LetsThroughAnInputThatIsNoObject) {
  for (const ToolCall& call : toolCalls()) {
    for (const std::string input : {"null", "\"{}\"", "[]", "5", "true", R"([{"q":1}])"}) {
      expectLetThrough(call.harness, call.payload(input));
    }
    expectLetThrough(call.harness, R"({"tool_name":)" + jsonString(call.tool) +
                                       R"(,"session_id":"s","agent_id":"a"})");
  }
}

TEST_F(Pretool, LetsThroughACallWithoutIdentity) {
  for (const ToolCall& call : toolCalls()) {
    for (const std::string blank : {"", "  ", "\n\t\r", "\u00a0\u2003\u2028\u3000\u0085"}) {
      expectLetThrough(call.harness, call.payload("{}", blank));
    }
    const std::string start =
        R"({"tool_name":)" + jsonString(call.tool) + R"(,"tool_input":{"x":1})";
    for (const std::string value : {"null", "7", "true", R"(["me"])", R"({"id":"me"})"}) {
      expectLetThrough(call.harness,
                       start + "," + jsonString(call.identityKey) + ":" + value + "}");
    }
    expectLetThrough(call.harness, start + "}");
    const std::string other = call.identityKey == "agent_id" ? "session_id" : "agent_id";
    expectLetThrough(call.harness, start + "," + jsonString(other) + R"(:"me","sessionID":"me"})");
  }
}

TEST_F(Pretool, DoesNotTakeTheIdentityFromTheToolsInput) {
  for (const ToolCall& call : toolCalls()) {
    expectLetThrough(call.harness, R"({"tool_name":)" + jsonString(call.tool) +
                                       R"(,"tool_input":{)" + jsonString(call.identityKey) +
                                       R"(:"me"}})");
  }
}

TEST_F(Pretool, StampsTheIdentityAsItIs) {
  for (const ToolCall& call : toolCalls()) {
    for (const std::string& identity :
         {std::string(" a7 "), std::string("\n\ta\r\n"), std::string("a/b\\c\"d"),
          std::string("ü 日本 🙂 \u2028"), std::string("a\0b", 3), std::string("\x01\x1f\x7f"),
          std::string(100'000, 'i')}) {
      EXPECT_THAT(answerOf(call.harness, call.payload(R"({"x":1})", identity)),
                  isPretoolAnswer(call.answer(R"({"x":1,)" + jsonString(call.stampKey) + ":" +
                                              jsonString(identity) + "}")));
    }
  }
}

TEST_F(Pretool, PaysNoHeedToTheRestOfThePayload) {
  for (const ToolCall& call : toolCalls()) {
    const std::string body = R"("tool_name":)" + jsonString(call.tool) + "," +
                             jsonString(call.identityKey) + R"(:"me","tool_input":{"x":1}})";
    const std::string expected =
        call.answer(R"({"x":1,)" + jsonString(call.stampKey) + R"(:"me"})");
    for (const std::string rest :
         {"", R"("hook_event_name":null,)", R"("hook_event_name":"UserPromptSubmit",)",
          R"("agent_type":5,"cursor_version":null,"prompt":[],)", R"("cwd":"/nonexistent",)"}) {
      EXPECT_THAT(answerOf(call.harness, "{" + rest + body), isPretoolAnswer(expected));
    }
  }
}

TEST_F(Pretool, ReadsEveryUnicodeEncoding) {
  for (const ToolCall& call : toolCalls()) {
    const std::string payload = call.payload("{\"q\":1}", "plain");
    std::u32string wide(payload.begin(), payload.end());
    wide.replace(wide.find(U"\"q\":1"), 5, U"\"gr\u00fc\u00df \U0001F642\":\"\u65e5\u672c/\"");
    for (const std::string& spelling : inEveryEncoding(wide)) {
      EXPECT_THAT(answerOf(call.harness, spelling),
                  isPretoolAnswer(call.answer("{\"grüß 🙂\":\"日本/\"," +
                                              jsonString(call.stampKey) + ":\"plain\"}")));
    }
  }
}

TEST_F(Pretool, IsNotServedToTheOtherKindOfHarness) {
  for (const ToolCall& cursorsCall : cursorCalls()) {
    for (const ToolCall& othersCall : subagentCalls()) {
      expectLetThrough(othersCall.harness, cursorsCall.payload("{}"));
      expectLetThrough(cursorsCall.harness, othersCall.payload("{}"));
    }
  }
}

}  // namespace
}  // namespace quillstead
