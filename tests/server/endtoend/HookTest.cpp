#include "helpers/HarnessFacts.h"
#include "server/Index/Database.h"
#include "server/endtoend/ProgramRun.h"
#include "server/helpers/MemoryStage.h"
#include "unit/helpers/JSONValues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server::test {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// The longest text in a document: what a harness hands to its agent.
std::string longestText(const JSON::Value& value) {
  if (value.string()) return *value.string();
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
class HookWithServer : public ::testing::TestWithParam<HarnessFacts> {
 protected:
  void SetUp() override {
    stage.set("QUILLSTEAD_MCP_BIN", serverProgram());
    stage.set("QUILLSTEAD_HOOK_LOG", stage.path("log"));
    stage.write("home/.quillstead/rules.md", "- Personal – größer.\n");
    stage.write("project/.quillstead/rules.md", "- Project / slash.\n");
    stage.writeProjectCard("heron.md", "# Heron\n\nstands in the water – naïve");
  }

  /// What the agent is given. A prompt that a stalled machine kept from its texts, as the log then
  /// says, is asked again.
  [[nodiscard]] std::string answered(const std::string& slot, std::string_view prompt) const {
    constexpr int mostTries = 5;
    std::string given;
    for (int count = 0; count < mostTries; ++count) {
      unit::writeFile(stage.path("log"), "");
      given = answeredOnce(slot, prompt);
      if (logged().find("timeout") == std::string::npos) break;
    }
    return given;
  }

  /// The log's line about the last prompt.
  [[nodiscard]] std::string logged() const { return unit::contentsOf(stage.path("log")); }

  [[nodiscard]] std::string answeredOnce(const std::string& slot, std::string_view prompt) const {
    const std::string payload = R"({"prompt":)" + jsonText(prompt) + R"(,"cwd":)" +
                                jsonText(stage.project()) + R"(,"workspace_roots":[)" +
                                jsonText(stage.project()) + "]}";
    std::vector<std::string> arguments{"--harness", GetParam().name};
    if (!slot.empty()) arguments.insert(arguments.end(), {"--slot", slot});
    const ProgramEnd end = ProgramRun({.executable = hookProgram(),
                                       .arguments = arguments,
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
            "<user-rules>\n- Personal – größer.\n\nFrom here on, these are not the user's own "
            "rules but those in this project's files:\n\n- Project / slash.\n</user-rules>");
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
  const HarnessFacts& harness = GetParam();
  EXPECT_THAT(given, HasSubstr("more rules were left out here"));
  for (const auto& ceiling : {harness.cardCeiling, harness.cardHeadCeiling}) {
    EXPECT_LE(given.size(), ceiling.value_or(given.size()));
  }
  EXPECT_LE(given.size(), 28'000U);
  EXPECT_THAT(answered("index", "x"), HasSubstr("- Heron"));
}

TEST_P(HookWithServer, IsGivenTheUsersOwnRulesHoweverLongTheProjectsAre) {
  std::string many;
  while (many.size() < 30'000) many += "- A rule of the project.\n";
  stage.writeProjectCard("gull.md", "# Gull");
  for (const std::string& rules : {many, std::string(30'000, 'x')}) {
    stage.write("project/.quillstead/rules.md", rules);
    for (const char* const slot : {"rules", ""}) {
      const std::string given = answered(slot, "where is the heron?");
      EXPECT_THAT(given, ::testing::StartsWith("<user-rules>\n- Personal – größer.\n"));
      EXPECT_THAT(given, HasSubstr(" left out here; the tool `rules_get` gives all of them.)"));
      EXPECT_LE(given.substr(0, given.find("</user-rules>")).size(), 28'000U);
    }
  }
}

TEST_P(HookWithServer, IsGivenRulesWhileAnotherServerKeepsTheIndexLocked) {
  EXPECT_THAT(answered("index", "x"), HasSubstr("\n- Heron"));
  stage.writeProjectCard("gull.md", "# Gull");
  Database other = Database::open(stage.indexFile(), std::chrono::seconds(10));
  ASSERT_TRUE(other.run("BEGIN EXCLUSIVE"));
  EXPECT_THAT(answered("rules", "x"), HasSubstr("Personal – größer."));
  EXPECT_THAT(answered("", "where is the heron?"), HasSubstr("Personal – größer."));
  EXPECT_THAT(logged(), HasSubstr(" rules=1 "));
}

TEST_P(HookWithServer, FindsTheServersRepliesInOrder) {
  EXPECT_THAT(answered("", "where is the heron?"), HasSubstr("Personal – größer"));
  EXPECT_THAT(logged(), HasSubstr(" card=1 rules=1 cards=1 |"));
  EXPECT_THAT(answered("index", "x"), HasSubstr("Heron"));
  EXPECT_THAT(logged(), HasSubstr(" card=1 rules=1 index=1 |"));
  (void)answered("recall", "what of the others?");
  EXPECT_THAT(logged(), HasSubstr(" rules=1 cards=0 |"));

  stage.set("QUILLSTEAD_RULES_CARD", "0");
  EXPECT_THAT(answered("rules", "x"), HasSubstr("Project / slash."));
  EXPECT_THAT(logged(), HasSubstr(" rules=1 |"));
  EXPECT_THAT(logged(), Not(HasSubstr("card=")));

  stage.set("QUILLSTEAD_HOME", stage.path("nothing"));
  std::filesystem::remove_all(stage.path("project/.quillstead"));
  EXPECT_EQ(answered("rules", "x").find("user-rules"), std::string::npos);
  EXPECT_THAT(logged(), HasSubstr(" rules=0 |"));
}

TEST_P(HookWithServer, IsGivenAPointerToRulesThatCannotBeCut) {
  stage.write("home/.quillstead/rules.md", std::string(20'000, 'x'));
  stage.write("project/.quillstead/rules.md", "");
  const HarnessFacts& harness = GetParam();
  const bool hasCeiling = harness.cardCeiling || harness.cardHeadCeiling;
  const std::string given = answered("rules", "x");
  EXPECT_THAT(given, HasSubstr(hasCeiling ? "The tool `rules_get`" : "xxx"));
  EXPECT_THAT(logged(), HasSubstr(hasCeiling ? " card=pointer rules=1 |" : " card=1 rules=1 |"));
}

TEST_P(HookWithServer, IsGivenRulesIndexAndCardsTogetherWithinWhatTheHarnessTakes) {
  stage.write("project/.quillstead/rules.md", "");
  std::string rules;
  for (const int count : {3, 400, 460, 500, 520, 2'000}) {
    rules.clear();
    for (int number = 0; number < count; ++number) rules += "- A rule – größer.\n";
    stage.write("home/.quillstead/rules.md", rules);
    const std::string given = answered("", "where is the heron?");
    SCOPED_TRACE(count);
    EXPECT_THAT(given, ::testing::StartsWith("<user-rules>\n- A rule – größer."));
    EXPECT_THAT(given, HasSubstr("\n- Heron"));
  }
}

TEST_P(HookWithServer, TrimsManyCardsBetweenThem) {
  for (int number = 0; number < 8; ++number) {
    stage.writeProjectCard("n" + std::to_string(number) + ".md",
                           "# Gull " + std::to_string(number) + "\n\n" + std::string(2'400, 'x'));
  }
  const std::string given = answered("recall", "gull");
  EXPECT_THAT(given, ::testing::StartsWith("<quillstead-memory>\n"));
  EXPECT_THAT(given, ::testing::EndsWith("`grab` reads all of it)\n</quillstead-memory>"));
}

TEST_P(HookWithServer, RecallsWhatWasAddedBetweenTwoPrompts) {
  EXPECT_THAT(answered("recall", "ibis"), Not(HasSubstr("ibis")));
  EXPECT_FALSE(
      stage.call("memory_add", R"({"text":"the ibis","_quillstead_subagent":"a7"})").isError);
  EXPECT_THAT(answered("recall", "ibis"), HasSubstr("the ibis"));
}

INSTANTIATE_TEST_SUITE_P(EachHarness, HookWithServer, ::testing::ValuesIn(harnessFacts()),
                         [](const auto& given) {
                           std::string name = given.param.name;
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace

}  // namespace quillstead::server::test
