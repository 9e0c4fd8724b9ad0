#include "hook/Harness/Cursor.h"
#include "unit/helpers/Inputs.h"

#include <gtest/gtest.h>

namespace quillstead::hook {
namespace {

constexpr std::string_view event = "UserPromptSubmit";

using unit::described;
using unit::InputCase;

const CursorAdapter adapter;

TEST(CursorAdapter, ReadsEveryFieldOfItsPayload) {
  for (const InputCase& one : {
           InputCase{"{}", "[]---"},
           InputCase{
               R"({"prompt":"p","workspace_roots":["/a"],"session_id":"s","transcript_path":"/t"})",
               "[p][/a][s][/t]"},
           InputCase{R"({"cursor_version":"1","prompt":"p"})", "[p]---"},
           InputCase{R"({"sessionID":"s","conversation_id":"c"})", "[]---"},
           InputCase{R"({"session_id":" ","transcript_path":7})", "[]---"},
       }) {
    EXPECT_EQ(described(adapter.parse(one.payload)), one.expected) << one.payload;
  }
}

TEST(CursorAdapter, TakesTheFirstWorkspaceRootThatIsNotBlank) {
  for (const InputCase& one : {
           InputCase{R"({"workspace_roots":[42," ","/a","/b"]})", "[][/a]--"},
           InputCase{R"({"workspace_roots":["/a","/b"]})", "[][/a]--"},
           InputCase{R"({"workspace_roots":[" /a "]})", "[][ /a ]--"},
           InputCase{R"({"workspace_roots":[null,true,["/x"],{"p":"/y"},"/z"]})", "[][/z]--"},
           InputCase{R"({"workspace_roots":["","\n"]})", "[]---"},
           InputCase{R"({"workspace_roots":"/a"})", "[]---"},
           InputCase{R"({"workspace_roots":{"0":"/a"}})", "[]---"},
           InputCase{R"({"workspace_roots":null})", "[]---"},
           InputCase{R"({"workspace_roots":[]})", "[]---"},
       }) {
    EXPECT_EQ(described(adapter.parse(one.payload)), one.expected) << one.payload;
  }
}

TEST(CursorAdapter, NeverReadsTheDirectoryKey) {
  EXPECT_EQ(described(adapter.parse(R"({"workspace_roots":[],"cwd":"/x"})")), "[]---");
  EXPECT_EQ(described(adapter.parse(R"({"cwd":"/x"})")), "[]---");
}

TEST(CursorAdapter, RefusesWhatIsNoObject) {
  for (const std::string_view payload : unit::refusedByAll) {
    EXPECT_EQ(described(adapter.parse(payload)), "refused") << payload;
  }
}

TEST(CursorAdapter, WrapsTheTextInAFlatDocument) {
  EXPECT_TRUE(
      unit::areEquivalent(unit::parsed(adapter.envelope("a/b", event)),
                          JSON::objectOf({{"continue", true}, {"additional_context", "a/b"}})));
  EXPECT_NE(adapter.envelope("a/b", event).find(R"("a\/b")"), std::string::npos);
}

TEST(CursorAdapter, SaysContinueWithABooleanAndNotAText) {
  const JSON::Object document = unit::parsedObject(adapter.envelope("x", event));
  ASSERT_NE(document.find("continue"), nullptr);
  ASSERT_NE(document.find("continue")->boolean(), nullptr);
  EXPECT_TRUE(*document.find("continue")->boolean());
}

}  // namespace
}  // namespace quillstead::hook
