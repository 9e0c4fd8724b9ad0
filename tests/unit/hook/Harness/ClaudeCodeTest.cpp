#include "hook/Harness/ClaudeCode.h"
#include "unit/helpers/Inputs.h"

#include <gtest/gtest.h>

namespace quillstead::hook {
namespace {

constexpr std::string_view event = "UserPromptSubmit";

using unit::described;
using unit::InputCase;

const ClaudeCodeAdapter adapter;

TEST(ClaudeCodeAdapter, ReadsEveryFieldOfItsPayload) {
  for (const InputCase& one : {
           InputCase{"{}", "[]---"},
           InputCase{R"({"prompt":"hi"})", "[hi]---"},
           InputCase{R"({"prompt":"hi","cwd":"/p","session_id":"s","transcript_path":"/t"})",
                     "[hi][/p][s][/t]"},
           InputCase{R"({"prompt":42,"cwd":"  "})", "[]---"},
           InputCase{R"({"prompt":null,"cwd":null,"session_id":5,"transcript_path":[]})", "[]---"},
           InputCase{"{\"session_id\":\"  k1 \\n\"}", "[]-[  k1 \n]-"},
           InputCase{R"({"sessionID":"s","workspace_roots":["/a"],"Prompt":"p"})", "[]---"},
           InputCase{R"({"hook_event_name":"PreToolUse","prompt":"p"})", "[p]---"},
           InputCase{R"({"cwd":"/a","cwd":"/b"})", "[][/b]--"},
       }) {
    EXPECT_EQ(described(adapter.parse(one.payload)), one.expected) << one.payload;
  }
}

TEST(ClaudeCodeAdapter, RefusesEveryPayloadWithCursorsVersion) {
  for (const char* payload :
       {R"({"prompt":"hi","cursor_version":null})", R"({"prompt":"hi","cursor_version":"1.7"})",
        R"({"cursor_version":""})", R"({"cursor_version":false,"prompt":"hi"})",
        R"({"cursor\u005fversion":1})"}) {
    EXPECT_EQ(described(adapter.parse(payload)), "refused") << payload;
  }
}

TEST(ClaudeCodeAdapter, DoesNotMindCursorsVersionElsewhere) {
  EXPECT_EQ(described(adapter.parse(R"({"prompt":"hi","x":{"cursor_version":"1"}})")), "[hi]---");
  EXPECT_EQ(described(adapter.parse(R"({"prompt":"hi","Cursor_Version":"1"})")), "[hi]---");
}

TEST(ClaudeCodeAdapter, RefusesWhatIsNoObject) {
  for (const std::string_view payload : unit::refusedByAll) {
    EXPECT_EQ(described(adapter.parse(payload)), "refused") << payload;
  }
}

TEST(ClaudeCodeAdapter, WrapsTheTextForItsPromptHook) {
  const std::string text = "<quillstead-memory>\nx\n</quillstead-memory>";
  const std::string envelope = adapter.envelope(text, event);
  EXPECT_TRUE(unit::areEquivalent(
      unit::parsed(envelope),
      JSON::objectOf({{"hookSpecificOutput", JSON::objectOf({{"hookEventName", "UserPromptSubmit"},
                                                             {"additionalContext", text}})}})));
  EXPECT_NE(envelope.find(R"(<quillstead-memory>\nx\n<\/quillstead-memory>)"), std::string::npos);
  EXPECT_EQ(envelope.find_first_of(" \n"), std::string::npos) << "compact, on one line";
}

TEST(ClaudeCodeAdapter, EscapesSlashesInItsEnvelope) {
  EXPECT_NE(adapter.envelope("a/b", event).find(R"("a\/b")"), std::string::npos);
}

// --- What Codex takes over

TEST(ClaudeCode, ReadsItsFourKeys) {
  EXPECT_EQ(unit::described(ClaudeCode::input(
                unit::documentIn(
                    R"({"transcript_path":"/t","session_id":"s","cwd":"/p","prompt":" hi "})")
                    .object())),
            "[ hi ][/p][s][/t]");
}

TEST(ClaudeCode, PutsTheTextIntoTheAdditionalContext) {
  const JSON::Object document = unit::parsedObject(ClaudeCode::envelope("text", event));
  const JSON::Object* const output = JSON::objectOf(document.find("hookSpecificOutput"));
  ASSERT_TRUE(output);
  EXPECT_EQ(document.size(), 1U);
  EXPECT_EQ(output->size(), 2U);
  EXPECT_TRUE(JSON::isText(output->find("hookEventName"), "UserPromptSubmit"));
  EXPECT_TRUE(JSON::isText(output->find("additionalContext"), "text"));
}

TEST(ClaudeCode, NamesTheEventThatItIsToldOf) {
  for (const char* const named : {"SubagentStart", "SessionStart"}) {
    const JSON::Object document = unit::parsedObject(adapter.envelope("text", named));
    const JSON::Object* const output = JSON::objectOf(document.find("hookSpecificOutput"));
    ASSERT_TRUE(output && output->size() == 2);
    EXPECT_TRUE(JSON::isText(output->find("hookEventName"), named));
  }
}

TEST(ClaudeCode, WritesAnyTextSoThatItReadsBack) {
  unit::ValueGenerator generator(22);
  for (int i = 0; i < 500; ++i) {
    const std::string text = generator.text();
    const JSON::Object document = unit::parsedObject(ClaudeCode::envelope(text, event));
    const JSON::Object* const output = JSON::objectOf(document.find("hookSpecificOutput"));
    ASSERT_TRUE(output && JSON::isText(output->find("additionalContext"), text));
  }
}

}  // namespace
}  // namespace quillstead::hook
