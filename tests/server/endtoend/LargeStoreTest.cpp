// Prompts over a store that takes longer to index than a prompt may wait.
#include "server/endtoend/ProgramRun.h"
#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace quillstead::server::test {

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

constexpr std::size_t cards = 16;
constexpr std::size_t sizeOfCard = 1'048'576;  // bytes; the largest that is read

/// Sixteen cards of one mebibyte each, and a rule.
class LargeCards : public ::testing::Test {
 protected:
  void SetUp() override {
    stage.set("QUILLSTEAD_MCP_BIN", serverProgram());
    stage.set("QUILLSTEAD_HOOK_LOG", stage.path("log"));
    stage.write("home/.quillstead/rules.md", "- Be careful.\n");
    for (std::size_t number = 0; number < cards; ++number) {
      stage.writeProjectCard(std::to_string(number) + ".md", textOf(number));
    }
  }

  /// Many different words, and one that no other card has.
  static std::string textOf(std::size_t number) {
    constexpr unsigned differentWords = 50'000;
    std::minstd_rand random(static_cast<unsigned>(number + 1));
    std::string text = "# Card " + std::to_string(number) + "\n\n";
    while (text.size() < sizeOfCard - 20)
      text += "w" + std::to_string(random() % differentWords) + ' ';
    const std::string last = "heron" + std::to_string(number);
    text.resize(sizeOfCard - last.size() - 1, 'x');
    return text + ' ' + last;
  }

  /// What so many hooks, all at once, are given for a prompt.
  [[nodiscard]] std::vector<std::string> prompted(std::size_t hooks,
                                                  const std::string& prompt) const {
    const std::string payload =
        R"({"prompt":)" + jsonText(prompt) + R"(,"cwd":)" + jsonText(stage.project()) + "}";
    std::vector<ProgramRun> runs;
    for (std::size_t count = 0; count < hooks; ++count) {
      runs.emplace_back(ProgramStart{.executable = hookProgram(),
                                     .arguments = {"--harness", "claude-code"},
                                     .environment = stage.environment(),
                                     .input = payload});
    }
    std::vector<std::string> given;
    for (ProgramRun& run : runs) given.push_back(run.finish().output);
    return given;
  }

  static bool allHold(const std::vector<std::string>& given, const std::string& text) {
    return std::all_of(given.begin(), given.end(), [&text](const std::string& one) {
      return one.find(text) != std::string::npos;
    });
  }

  /// Prompts without an index, again where a stalled machine took all the time. A server that
  /// waits for the index would take it each time.
  [[nodiscard]] bool hasRulesAtTheFirstPrompt(std::size_t hooks) const {
    constexpr int mostTries = 5;
    for (int count = 0; count < mostTries; ++count) {
      fs::remove_all(stage.path(MemoryStage::indexPlace()));
      if (allHold(prompted(hooks, "heron7"), "Be careful.")) return true;
    }
    return false;
  }

  /// Prompts until every hook is given the card; few of the prompts may lack their rules on the
  /// way, because a machine may stall.
  void expectCardAfterAFewPrompts(std::size_t hooks) const {
    constexpr int mostPrompts = 40;
    int prompts = 0;
    int withoutRules = 0;
    for (bool found = false; !found; ++prompts) {
      ASSERT_LT(prompts, mostPrompts) << "the index never held the cards";
      const std::vector<std::string> given = prompted(hooks, "heron7");
      found = allHold(given, "## Card 7\\n");
      if (!allHold(given, "Be careful.")) ++withoutRules;
    }
    EXPECT_LE(withoutRules, prompts / 3 + 1) << "of " << prompts;
  }

  MemoryStage stage;
};

TEST_F(LargeCards, LeaveTheFirstPromptItsRulesAndAreRecalledAfterAFew) {
  EXPECT_TRUE(hasRulesAtTheFirstPrompt(1));
  expectCardAfterAFewPrompts(1);
  for (const std::size_t number : {0U, 15U}) {
    const std::string title = "Card " + std::to_string(number);
    EXPECT_THAT(stage.recalled("heron" + std::to_string(number)), ::testing::ElementsAre(title));
  }
}

TEST_F(LargeCards, AreNoMoreTroubleToTwoHooksAtOnce) {
  constexpr std::size_t two = 2;
  EXPECT_TRUE(hasRulesAtTheFirstPrompt(two));
  expectCardAfterAFewPrompts(two);
  EXPECT_THAT(stage.recalled("heron15"), ::testing::ElementsAre("Card 15"));
}

}  // namespace

}  // namespace quillstead::server::test
