#include "hook/Harness/OpenCode.h"
#include "unit/helpers/Inputs.h"

#include <gtest/gtest.h>

namespace quillstead::hook {
namespace {

constexpr std::string_view event = "UserPromptSubmit";

using unit::described;
using unit::InputCase;

const OpenCodeAdapter adapter;

TEST(OpenCodeAdapter, ReadsEveryFieldOfItsPayload) {
  for (const InputCase& one : {
           InputCase{"{}", "[]---"},
           InputCase{R"({"prompt":"p","cwd":"/p","sessionID":"s"})", "[p][/p][s]-"},
           InputCase{R"({"prompt":"p","sessionID":"s1","session_id":"s2"})", "[p]-[s1]-"},
           InputCase{R"({"prompt":"p","session_id":"s2"})", "[p]---"},
           InputCase{R"({"sessionId":"s"})", "[]---"},
           InputCase{R"({"transcript_path":"/t"})", "[]---"},
           InputCase{R"({"transcriptPath":"/t","workspace_roots":["/a"]})", "[]---"},
           InputCase{R"({"prompt":"p","cursor_version":"1"})", "[p]---"},
           InputCase{R"({"cwd":"\t","sessionID":" s "})", "[]-[ s ]-"},
       }) {
    EXPECT_EQ(described(adapter.parse(one.payload)), one.expected) << one.payload;
  }
}

TEST(OpenCodeAdapter, RefusesWhatIsNoObject) {
  for (const std::string_view payload : unit::refusedByAll) {
    EXPECT_EQ(described(adapter.parse(payload)), "refused") << payload;
  }
}

TEST(OpenCodeAdapter, WrapsTheTextUnderOneKey) {
  EXPECT_EQ(adapter.envelope("a/b\n\"c\"", event), R"({"context":"a\/b\n\"c\""})");
}

}  // namespace
}  // namespace quillstead::hook
