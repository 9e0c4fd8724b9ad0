#include "server/endtoend/ProgramRun.h"
#include "server/helpers/MemoryStage.h"
#include "unit/helpers/JSONValues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quillstead::servertest {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// The longest text in a document: what a harness hands to its agent.
std::string longestText(const JSON::Value& value) {
  if (value.text()) return *value.text();
  std::string longest;
  const auto consider = [&](const JSON::Value& inner) {
    std::string text = longestText(inner);
    if (text.size() > longest.size()) longest = std::move(text);
  };
  if (value.object()) {
    for (const JSON::Member& member : value.object()->members()) consider(member.value);
  }
  if (value.array()) {
    for (const JSON::Value& element : *value.array()) consider(element);
  }
  return longest;
}

/// The hook in front of the server, for each harness.
class HookWithServer : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    stage.set("QUILLSTEAD_MCP_BIN", serverProgram());
    stage.set("QUILLSTEAD_HOOK_LOG", stage.path("log"));
    stage.write("home/.quillstead/rules.md", "- Personal – größer.\n");
    stage.write("project/.quillstead/rules.md", "- Project / slash.\n");
    stage.writeProjectCard("heron.md", "# Heron\n\nstands in the water – naïve");
  }

  [[nodiscard]] std::string answered(const std::string& slot, std::string_view prompt) const {
    const std::string payload = R"({"prompt":)" + jsonText(prompt) + R"(,"cwd":)" +
                                jsonText(stage.project()) + R"(,"workspace_roots":[)" +
                                jsonText(stage.project()) + "]}";
    const ProgramEnd end = ProgramRun({.executable = hookProgram(),
                                       .arguments = {"--harness", GetParam(), "--slot", slot},
                                       .environment = stage.environment(),
                                       .input = payload})
                               .finish();
    EXPECT_EQ(end.status, 0);
    return end.output.empty() ? "" : longestText(unit::parsed(end.output));
  }

  MemoryStage stage;
};

TEST_P(HookWithServer, HandsRulesIndexAndCardsToTheHarness) {
  EXPECT_EQ(answered("rules", "x"),
            "<user-rules>\n- Personal – größer.\n\n- Project / slash.\n</user-rules>");
  EXPECT_THAT(answered("index", "x"), HasSubstr("Memory holds 1 card"));
  EXPECT_THAT(answered("index", "x"), HasSubstr("\n- Heron\n</user-rules>"));
  EXPECT_THAT(answered("recall", "where is the heron?"),
              ::testing::AllOf(::testing::StartsWith("<quillstead-memory>\n"),
                               HasSubstr("stands in the water – naïve\n</quillstead-memory>")));
  EXPECT_THAT(answered("recall", "what of the others?"), Not(HasSubstr("quillstead-memory")));
}

TEST_P(HookWithServer, IsGivenRulesThatFitItHoweverLongTheyAre) {
  std::string rules;
  for (int number = 0; number < 5'000; ++number) rules += "- A rule – größer.\n";
  stage.write("home/.quillstead/rules.md", rules);
  const std::string given = answered("rules", "x");
  const std::string name = GetParam();
  if (name == "claude-code" || name == "cursor") {
    EXPECT_THAT(given, HasSubstr("more rules were left out here"));
    EXPECT_LE(given.size(), name == "cursor" ? 5'000U : 10'000U);
  }
  if (name == "opencode") {
    EXPECT_GT(given.size(), rules.size());
  }
  EXPECT_THAT(answered("index", "x"), HasSubstr(name == "codex" ? "" : "- Heron"));
}

TEST_P(HookWithServer, TrimsManyCardsBetweenThem) {
  for (int number = 0; number < 8; ++number) {
    stage.writeProjectCard("n" + std::to_string(number) + ".md",
                           "# Gull " + std::to_string(number) + "\n\n" + std::string(2'400, 'x'));
  }
  const std::string given = answered("recall", "gull");
  EXPECT_THAT(given, ::testing::StartsWith("<quillstead-memory>\n"));
  EXPECT_THAT(given, ::testing::EndsWith("xxx\n</quillstead-memory>"));
}

TEST_P(HookWithServer, RecallsWhatWasAddedBetweenTwoPrompts) {
  EXPECT_THAT(answered("recall", "ibis"), Not(HasSubstr("ibis")));
  EXPECT_FALSE(
      stage.call("memory_add", R"({"text":"the ibis","_quillstead_subagent":"a7"})").isError);
  EXPECT_THAT(answered("recall", "ibis"), HasSubstr("the ibis"));
}

INSTANTIATE_TEST_SUITE_P(EachHarness, HookWithServer,
                         ::testing::Values("claude-code", "codex", "cursor", "opencode"),
                         [](const auto& given) {
                           std::string name = given.param;
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace

}  // namespace quillstead::servertest
