#include "hook/Harness/ClaudeCode.h"
#include "hook/Harness/Codex.h"
#include "hook/Harness/Cursor.h"
#include "hook/Harness/Harnesses.h"
#include "hook/Harness/OpenCode.h"

#include <gtest/gtest.h>

namespace quillstead::hook::Harnesses {
namespace {

TEST(Harnesses, ListTheFourWithEveryPropertyInOrder) {
  struct Row {
    std::string_view name;
    std::optional<std::int64_t> contextBudget;
    std::optional<std::int64_t> cardCeiling;
    std::optional<std::int64_t> cardHeadCeiling;
    std::optional<std::string_view> silence;
    CallStamp stamp;
    bool takesDecision;
  };
  const std::vector<Row> rows{
      {"claude-code", 10'000, std::nullopt, 10'000, std::nullopt, CallStamp::subagent, false},
      {"codex", 30'000, std::nullopt, std::nullopt, R"({"continue":true})", CallStamp::subagent,
       true},
      {"cursor", 8'000, 5'000, std::nullopt, R"({"continue":true})", CallStamp::session, false},
      {"opencode", std::nullopt, std::nullopt, std::nullopt, "{}", CallStamp::subagent, true},
  };
  ASSERT_EQ(all().size(), rows.size());
  for (std::size_t at = 0; at < rows.size(); ++at) {
    const HarnessAdapter& adapter = *all()[at];
    SCOPED_TRACE(rows[at].name);
    EXPECT_EQ(adapter.name(), rows[at].name);
    EXPECT_EQ(adapter.clientName(), rows[at].name);
    EXPECT_EQ(adapter.contextBudget(), rows[at].contextBudget);
    EXPECT_EQ(adapter.cardCeiling(), rows[at].cardCeiling);
    EXPECT_EQ(adapter.cardHeadCeiling(), rows[at].cardHeadCeiling);
    EXPECT_EQ(adapter.silence(), rows[at].silence);
    EXPECT_EQ(adapter.stamp(), rows[at].stamp);
    EXPECT_EQ(adapter.takesDecision(), rows[at].takesDecision);
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

TEST(Harnesses, AreKnownByFourNamesInOrder) {
  EXPECT_EQ(knownNames(),
            (std::vector<std::string_view>{"claude-code", "codex", "cursor", "opencode"}));
}

}  // namespace
}  // namespace quillstead::hook::Harnesses
