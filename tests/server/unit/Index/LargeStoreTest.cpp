#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace quillstead::server::test {

namespace {

/// Recalls until the index holds all cards, which takes several calls on a slow machine.
void index(const MemoryStage& stage, int cards) {
  const std::string all = "Memory holds " + std::to_string(cards) + " cards";
  for (int call = 0; call < 100; ++call) {
    if (stage.call("rules_get").text.find(all) != std::string::npos) return;
  }
  FAIL() << "the index never held all cards";
}

TEST(LargeStore, FindsCardsByRareWordsAmongCommonOnes) {
  constexpr int cards = 2'500;
  const MemoryStage stage;
  for (int number = 0; number < cards; ++number) {
    const std::string name = "card" + std::to_string(number);
    stage.writeProjectCard(name + ".md", "# " + name + "\n\ncommon ground, rare" + name);
  }
  index(stage, cards);
  EXPECT_THAT(stage.recalled("common rarecard1234 ground"), ::testing::ElementsAre("card1234"));

  // With nothing but common words, those decide, the same way each time.
  EXPECT_THAT(stage.recalled("common"),
              ::testing::ElementsAre("card0", "card1", "card10", "card100", "card1000", "card1001",
                                     "card1002", "card1003"));
}

}  // namespace

}  // namespace quillstead::server::test
