#include "Encodings.h"
#include "HookTest.h"

#include <array>
#include <string>
#include <thread>
#include <vector>

namespace quillstead {
namespace {

using namespace std::string_literals;

class PromptPayload : public HookTest {
 protected:
  /// What the memory tool is asked after `payload`; empty when it is not asked.
  [[nodiscard]] std::string memoryArguments(const Harness& harness,
                                            std::string_view payload) const {
    return arguments(harness, "recall", payload, memoryTool);
  }

  /// What the rules tool is asked, without a card.
  [[nodiscard]] std::string rulesArguments(const Harness& harness, std::string_view payload) const {
    return arguments(harness, "rules", payload, rulesTool);
  }

  void expectSilence(const Harness& harness, const std::string& slot,
                     std::string_view payload) const {
    SCOPED_TRACE(harness.name + " " + slot + " " + std::string(payload.substr(0, 60)));
    const HookEnd end = run(harness, slot, payload);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.output, harness.silentOutput());
    EXPECT_EQ(end.error, "");
    EXPECT_TRUE(server.calls().empty());
    EXPECT_TRUE(logLines().empty());
  }

 private:
  [[nodiscard]] std::string arguments(const Harness& harness, const std::string& slot,
                                      std::string_view payload, std::string_view tool) const {
    const std::size_t before = server.calls().size();
    HookStart start = starting(harness, slot);
    start.environment["QUILLSTEAD_RULES_CARD"] = "0";
    EXPECT_EQ(runHook(start, payload).status, 0);
    const auto& calls = server.calls();
    EXPECT_GT(calls.size(), before) << "the payload was refused";
    for (std::size_t at = before; at < calls.size(); ++at) {
      if (calls[at].tool() == tool) return calls[at].toolArguments();
    }
    return "";
  }
};

TEST_F(PromptPayload, ThatIsNotOneJSONObjectIsAnsweredWithSilence) {
  const std::vector<std::string> table{
      "",
      "  \n",
      "nonsense",
      "[]",
      R"([{"prompt":"x"}])",
      R"("prompt")",
      "12",
      "null",
      "true",
      R"({"prompt":"x")",
      R"({"prompt":"x"} more)",
      R"({"prompt":"x"}{})",
      R"({'prompt':'x'})",
      R"({"prompt":"x",})",
      R"({"prompt":x})",
      R"({"prompt":"x","n":01})",
      R"({"prompt":"x","n":NaN})",
      R"({"prompt":"x" /* why */})",
      R"({"prompt":"\ud800"})",
      R"({"prompt":"\udc00\ud800"})",
      R"({"prompt":"\x"})",
      "{\"prompt\":\"a\nb\"}",
      "{\"prompt\":\"\xff\"}",
      "{\"prompt\":\"\xc0\xaf\"}",
      "{\"prompt\":\"\xed\xa0\x80\"}",
      "{\"prompt\":\"\xf0\x9f\x99\"}",
      "\xff\xfe{",
      "{\0"s,
      "{\"prompt\":\"x\"}\0"s,
  };
  for (const Harness& harness : harnesses()) {
    for (const std::string& payload : table) expectSilence(harness, "recall", payload);
  }
}

TEST_F(PromptPayload, ThatIsRefusedIsAnsweredWithSilenceAtEverySlot) {
  for (const Harness& harness : harnesses()) {
    for (const std::string& slot : promptSlots) expectSilence(harness, slot, "[]");
  }
}

TEST_F(PromptPayload, MayNestFiveHundredAndTwelveDeepAndNoDeeper) {
  const auto nested = [](std::size_t depth) {  // the object itself is one level
    return R"({"prompt":"x","deep":)" + std::string(depth - 1, '[') + std::string(depth - 1, ']') +
           "}";
  };
  for (const Harness& harness : harnesses()) {
    SCOPED_TRACE(harness.name);
    expectSilence(harness, "recall", nested(513));
    expectSilence(harness, "recall", nested(2'000'000));
  }
  for (const Harness& harness : harnesses()) {
    EXPECT_THAT(memoryArguments(harness, nested(512)), isJSON(R"({"prompt":"x"})")) << harness.name;
  }
}

TEST_F(PromptPayload, WithACursorVersionIsRefusedByClaudeCodeAlone) {
  for (const std::string value : {"null", R"("1")", "{}", "false", R"("")"}) {
    const std::string payload = R"({"prompt":"hi","cursor_version":)" + value + "}";
    for (const std::string& slot : promptSlots) {
      expectSilence(harness("claude-code"), slot, payload);
    }
  }
  for (const Harness& harness : harnesses()) {
    if (harness.name == "claude-code") continue;
    EXPECT_THAT(memoryArguments(harness, R"({"cursor_version":"1","prompt":"hi"})"),
                isJSON(R"({"prompt":"hi"})"));
    EXPECT_THAT(memoryArguments(harness, R"({"cursor_version":null,"prompt":"hi"})"),
                isJSON(R"({"prompt":"hi"})"));
  }
}

TEST_F(PromptPayload, ThatSaysNothingIsServed) {
  for (const Harness& harness : harnesses()) {
    EXPECT_THAT(rulesArguments(harness, "{}"), isJSON("{}")) << harness.name;
    EXPECT_EQ(memoryArguments(harness, "{}"), "") << harness.name;
  }
}

TEST_F(PromptPayload, GivesItsPromptAsItIsWhenItIsAText) {
  const std::vector<std::string> table{
      R"("hi")",
      R"("  two blanks around  ")",
      R"("line\nline\r\n\ttab")",
      R"("\"quotes\" \\ and \/ slashes /")",
      R"("\u0001\u001f\u007f")",
      R"("\u00fcmlaut \ud83d\ude42 🙂 é")",
      R"("\u0000")",
      R"("\ufeff\u2028\u2029")",
      R"("</script>")",
  };
  for (const Harness& harness : harnesses()) {
    for (const std::string& prompt : table) {
      const std::string payload = R"({"prompt":)" + prompt + "}";
      EXPECT_THAT(memoryArguments(harness, payload), isJSON(payload)) << harness.name;
    }
  }
}

TEST_F(PromptPayload, WithoutAPromptTextHasAnEmptyPrompt) {
  for (const Harness& harness : harnesses()) {
    for (const std::string prompt : {"42", "null", "true", "[\"x\"]", "{\"x\":1}"}) {
      EXPECT_EQ(memoryArguments(harness, R"({"prompt":)" + prompt + "}"), "") << harness.name;
    }
  }
}

TEST_F(PromptPayload, GivesItsOptionalTextsByTheKeysOfItsHarness) {
  const std::vector<std::array<std::string, 3>> table{
      // harness, payload, what the rules tool is asked
      {"claude-code", R"({"cwd":"/a","session_id":"s","transcript_path":"/t"})",
       R"({"cwd":"/a","session_id":"s","transcript_path":"/t"})"},
      {"claude-code", R"({"sessionID":"s","workspace_roots":["/a"]})", "{}"},
      {"claude-code", R"({"prompt":42,"cwd":"  "})", "{}"},
      {"claude-code", R"({"session_id":"  k1 \n"})", R"({"session_id":"  k1 \n"})"},
      {"codex", R"({"cwd":"/a","session_id":"s","transcript_path":"/t"})",
       R"({"cwd":"/a","session_id":"s","transcript_path":"/t"})"},
      {"codex", R"({"sessionID":"s","workspace_roots":["/a"]})", "{}"},
      {"codex", R"({"session_id":"","transcript_path":"/t"})", R"({"transcript_path":"/t"})"},
      {"cursor", R"({"workspace_roots":["/a"],"session_id":"s","transcript_path":"/t"})",
       R"({"cwd":"/a","session_id":"s","transcript_path":"/t"})"},
      {"cursor", R"({"workspace_roots":[42," ","/a","/b"]})", R"({"cwd":"/a"})"},
      {"cursor", R"({"workspace_roots":[null,["/x"],{"a":"/x"},true,"","\n"," /a "]})",
       R"({"cwd":" /a "})"},
      {"cursor", R"({"workspace_roots":"/a"})", "{}"},
      {"cursor", R"({"workspace_roots":{"0":"/a"}})", "{}"},
      {"cursor", R"({"workspace_roots":[1,2," "]})", "{}"},
      {"cursor", R"({"workspace_roots":[],"cwd":"/x","sessionID":"s"})", "{}"},
      {"opencode", R"({"cwd":"/a","sessionID":"s"})", R"({"cwd":"/a","session_id":"s"})"},
      {"opencode", R"({"sessionID":"s1","session_id":"s2"})", R"({"session_id":"s1"})"},
      {"opencode", R"({"session_id":"s2"})", "{}"},
      {"opencode", R"({"transcript_path":"/t","workspace_roots":["/a"]})", "{}"},
  };
  for (const auto& [name, payload, expected] : table) {
    SCOPED_TRACE(::testing::Message() << name << " " << payload);
    EXPECT_THAT(rulesArguments(harness(name), payload), isJSON(expected));
  }
}

TEST_F(PromptPayload, LeavesOutOptionalTextsThatAreBlankOrNoTexts) {
  const std::vector<std::string> table{
      "null",
      "1",
      "true",
      R"(["s"])",
      R"({"s":"s"})",
      R"("")",
      R"("  ")",
      R"("\t\r\n")",
      R"("\u00a0\u2003\u2028\u2029\u3000\u0085")",
  };
  for (const Harness& harness : harnesses()) {
    for (const std::string& value : table) {
      const std::string payload = R"({"cwd":)" + value + R"(,"transcript_path":)" + value +
                                  R"(,")" + harness.sessionKey + R"(":)" + value +
                                  R"(,"workspace_roots":[)" + value + "]}";
      EXPECT_THAT(rulesArguments(harness, payload), isJSON("{}")) << harness.name << payload;
    }
  }
}

TEST_F(PromptPayload, CountsTheLastOfAKeyThatComesTwice) {
  for (const Harness& harness : harnesses()) {
    const std::string key = harness.sessionKey;
    const std::string payload = R"({"prompt":"one","prompt":"two",")" + key + R"(":"a",")" + key +
                                R"(":" ","\u0070rompt":"three"})";
    EXPECT_THAT(memoryArguments(harness, payload), isJSON(R"({"prompt":"three"})"));
  }
}

TEST_F(PromptPayload, PaysNoHeedToTheNameOfTheEvent) {
  for (const Harness& harness : harnesses()) {
    for (const std::string name : {R"("PreToolUse")", "null", "5"}) {
      EXPECT_THAT(memoryArguments(harness, R"({"hook_event_name":)" + name + R"(,"prompt":"x"})"),
                  isJSON(R"({"prompt":"x"})"));
    }
  }
}

TEST_F(PromptPayload, IsReadInEveryUnicodeEncoding) {
  const std::u32string payload =
      U"{\"prompt\":\"gr\u00fc\u00dfe \u65e5\u672c \U0001F642 \\u00e9\"}";
  const std::string asked = "{\"prompt\":\"gr\u00fc\u00dfe \u65e5\u672c \U0001F642 \u00e9\"}";
  const std::vector<std::string> spellings = inEveryEncoding(payload);
  for (const Harness& harness : harnesses()) {
    for (const std::string& spelling : spellings) {
      EXPECT_THAT(memoryArguments(harness, spelling), isJSON(asked))
          << harness.name << ::testing::PrintToString(spelling.substr(0, 8));
    }
  }
}

TEST_F(PromptPayload, MayBeLarge) {
  for (const Harness& harness : harnesses()) {
    for (const std::size_t size :
         {std::size_t{65'535}, std::size_t{65'537}, std::size_t{5'000'000}}) {
      std::string prompt;
      while (prompt.size() < size) prompt += "line " + std::to_string(prompt.size()) + "\n";
      const std::string asked = memoryArguments(harness, harness.payload({.prompt = prompt}));
      EXPECT_TRUE(asked == R"({"prompt":)" + jsonString(prompt) + "}")
          << harness.name << " " << size;
    }
  }
}

TEST_F(PromptPayload, MayComeInPieces) {
  const HookStart start = starting(harness("codex"), "recall");
  HookRun run(start);
  for (const std::string_view piece : {"{\"pro", "mpt\":", "\"a \\u00", "e9 b\"", "}"}) {
    run.feed(piece);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(run.finish().status, 0);
  EXPECT_THAT(server.calls().at(1).toolArguments(), isJSON(R"({"prompt":"a é b"})"));
}

}  // namespace
}  // namespace quillstead
