#include "helpers/HarnessFacts.h"
#include "hook/Harness/ClaudeCode.h"
#include "hook/Harness/Codex.h"
#include "hook/Harness/CommandFlag.h"
#include "hook/Harness/Cursor.h"
#include "hook/Harness/Harnesses.h"
#include "hook/Harness/OpenCode.h"
#include "unit/helpers/Inputs.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

namespace quillstead::hook::Harnesses {
namespace {

std::optional<std::int64_t> number(const std::optional<std::size_t>& bytes) {
  return bytes ? std::optional(static_cast<std::int64_t>(*bytes)) : std::nullopt;
}

TEST(Harnesses, AreWhatTheTableOfTheirFactsSaysInItsOrder) {
  ASSERT_EQ(all().size(), harnessFacts().size());
  for (std::size_t at = 0; at < all().size(); ++at) {
    const HarnessAdapter& adapter = *all()[at];
    const HarnessFacts& facts = harnessFacts()[at];
    SCOPED_TRACE(facts.name);
    EXPECT_EQ(adapter.name(), facts.name);
    EXPECT_EQ(adapter.clientName(), facts.name);
    EXPECT_EQ(adapter.contextBudget(), number(facts.budget));
    EXPECT_EQ(adapter.cardCeiling(), number(facts.cardCeiling));
    EXPECT_EQ(adapter.cardHeadCeiling(), number(facts.cardHeadCeiling));
    EXPECT_EQ(adapter.silence(), facts.silence);
    EXPECT_EQ(adapter.stamp() == CallStamp::session ? "session" : "subagent", facts.stamp);
    EXPECT_EQ(adapter.takesDecision(), facts.takesDecision);
  }
}

TEST(Harnesses, ReadAndWriteWhatTheTableSays) {
  for (const HarnessAdapter* adapter : all()) {
    const HarnessFacts& facts = harnessFacts(adapter->name());
    SCOPED_TRACE(facts.name);
    const JSON::Document answer = unit::documentIn(adapter->envelope("text", EventFlag::prompt));
    EXPECT_EQ(contextIn(answer.object(), facts), "text");

    const std::string directory = facts.hasRoots ? R"("workspace_roots":["/d"])" : R"("cwd":"/d")";
    const auto input = adapter->parse(R"({"prompt":"p",)" + directory + ",\"" + facts.sessionKey +
                                      R"(":"s","transcript_path":"/t"})");
    EXPECT_EQ(unit::described(input), facts.hasTranscript ? "[p][/d][s][/t]" : "[p][/d][s]-");
    EXPECT_EQ(adapter->parse(R"({"cursor_version":"1"})").has_value(),
              !facts.refusesCursorsPayload);
  }
}

TEST(Harnesses, HaveAnAdapterOfTheirOwnEach) {
  EXPECT_NE(dynamic_cast<const ClaudeCodeAdapter*>(named("claude-code")), nullptr);
  EXPECT_NE(dynamic_cast<const CodexAdapter*>(named("codex")), nullptr);
  EXPECT_NE(dynamic_cast<const CursorAdapter*>(named("cursor")), nullptr);
  EXPECT_NE(dynamic_cast<const OpenCodeAdapter*>(named("opencode")), nullptr);
}

TEST(Harnesses, AreFoundByTheirExactNameOnly) {
  for (const char* unknown : {"CODEX", "", "Cursor", " cursor", "cursor ", "claude", "claude_code",
                              "open-code", "codex\n"}) {
    EXPECT_EQ(named(unknown), nullptr) << unknown;
  }
  for (const HarnessAdapter* adapter : all()) EXPECT_EQ(named(adapter->name()), adapter);
}

TEST(Harnesses, AreKnownByTheirNamesInOrder) {
  std::vector<std::string_view> names;
  for (const HarnessFacts& facts : harnessFacts()) names.emplace_back(facts.name);
  EXPECT_EQ(knownNames(), names);
}

}  // namespace
}  // namespace quillstead::hook::Harnesses
