// Prompts over a store that takes longer to index than a prompt may wait.
#include "server/endtoend/ProgramRun.h"
#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace quillstead::server::test {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t cards = 16;
constexpr std::size_t sizeOfCard = 1'048'576;  // bytes; the largest that is read

/// A machine may be so busy that no prompt is in time; no longer than this, it is hoped.
constexpr std::chrono::seconds longestStall(120);

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
    constexpr unsigned differentWords = 5'000;
    std::minstd_rand random(static_cast<unsigned>(number + 1));
    std::string text = "# Card " + std::to_string(number) + "\n\n";
    while (text.size() < sizeOfCard - 20)
      text += "w" + std::to_string(random() % differentWords) + ' ';
    const std::string last = "heron" + std::to_string(number);
    text.resize(sizeOfCard - last.size() - 1, 'x');
    return text + ' ' + last;
  }

  /// What so many hooks, all at once, are given for a prompt about one of the cards.
  [[nodiscard]] std::vector<std::string> prompted(std::size_t hooks, int card) const {
    const std::string payload = R"({"prompt":)" + jsonText("heron" + std::to_string(card)) +
                                R"(,"cwd":)" + jsonText(stage.project()) + "}";
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

  /// Whether a prompt ran out of time since the log was last emptied. A stalled machine does that
  /// to any prompt, and a server that waits for the index to every one.
  [[nodiscard]] bool ranOutOfTime() const {
    return unit::contentsOf(stage.path("log")).find("timeout") != std::string::npos;
  }

  /// Prompts without an index until none of the hooks ran out of time.
  void expectRulesAtTheFirstPrompt(std::size_t hooks) const {
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::string> given;
    do {
      ASSERT_LT(std::chrono::steady_clock::now() - start, longestStall);
      fs::remove_all(stage.path(MemoryStage::indexPlace()));
      unit::writeFile(stage.path("log"), "");
      given = prompted(hooks, 7);
    } while (ranOutOfTime());
    EXPECT_TRUE(allHold(given, "Be careful."));
  }

  /// Prompts until every hook was given the rules and each of some cards.
  void expectCardsAfterAFewPrompts(std::size_t hooks) const {
    constexpr int mostPrompts = 40;
    const auto start = std::chrono::steady_clock::now();
    std::vector<int> asked{7, 0, 15};
    for (int prompts = 0; !asked.empty();) {
      ASSERT_LT(prompts, mostPrompts) << "the index never held the cards";
      ASSERT_LT(std::chrono::steady_clock::now() - start, longestStall);
      unit::writeFile(stage.path("log"), "");
      const std::vector<std::string> given = prompted(hooks, asked.back());
      if (ranOutOfTime()) continue;
      ++prompts;
      EXPECT_TRUE(allHold(given, "Be careful."));
      if (allHold(given, "## Card " + std::to_string(asked.back()) + "\\n")) asked.pop_back();
    }
  }

  MemoryStage stage;
};

TEST_F(LargeCards, LeaveTheFirstPromptItsRulesAndAreRecalledAfterAFew) {
  expectRulesAtTheFirstPrompt(1);
  expectCardsAfterAFewPrompts(1);
}

TEST_F(LargeCards, AreNoMoreTroubleToTwoHooksAtOnce) {
  constexpr std::size_t two = 2;
  expectRulesAtTheFirstPrompt(two);
  expectCardsAfterAFewPrompts(two);
}

}  // namespace

}  // namespace quillstead::server::test
