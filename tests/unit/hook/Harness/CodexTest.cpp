#include "hook/Harness/Codex.h"
#include "unit/helpers/Inputs.h"

#include <gtest/gtest.h>

namespace quillstead::hook {
namespace {

constexpr std::string_view event = "UserPromptSubmit";

using unit::described;
using unit::InputCase;

const CodexAdapter adapter;

TEST(CodexAdapter, ReadsEveryFieldOfItsPayload) {
  for (const InputCase& one : {
           InputCase{"{}", "[]---"},
           InputCase{R"({"prompt":"hi","cwd":"/p","session_id":"s","transcript_path":"/t"})",
                     "[hi][/p][s][/t]"},
           InputCase{R"({"prompt":"hi","cursor_version":"1"})", "[hi]---"},
           InputCase{R"({"session_id":"","transcript_path":"/t"})", "[]--[/t]"},
           InputCase{R"({"transcript_path":null,"cwd":" /p "})", "[][ /p ]--"},
           InputCase{R"({"sessionID":"s","workspace_roots":["/a"]})", "[]---"},
       }) {
    EXPECT_EQ(described(adapter.parse(one.payload)), one.expected) << one.payload;
  }
}

TEST(CodexAdapter, RefusesWhatIsNoObject) {
  for (const std::string_view payload : unit::refusedByAll) {
    EXPECT_EQ(described(adapter.parse(payload)), "refused") << payload;
  }
}

TEST(CodexAdapter, WrapsTheTextForItsPromptHook) {
  EXPECT_TRUE(unit::areEquivalent(
      unit::parsed(adapter.envelope("a/b\n", event)),
      JSON::objectOf({{"hookSpecificOutput", JSON::objectOf({{"hookEventName", "UserPromptSubmit"},
                                                             {"additionalContext", "a/b\n"}})}})));
  EXPECT_NE(adapter.envelope("a/b\n", event).find(R"("a\/b\n")"), std::string::npos);
}

}  // namespace
}  // namespace quillstead::hook
