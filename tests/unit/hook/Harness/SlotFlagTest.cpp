#include "hook/Harness/SlotFlag.h"

#include <gtest/gtest.h>

namespace quillstead::hook::SlotFlag {
namespace {

TEST(SlotFlag, KnowsTheFourSlotsInOrder) {
  EXPECT_EQ(knownNames, (std::array<std::string_view, 4>{"rules", "index", "recall", "pretool"}));
  EXPECT_EQ(named("rules"), HookSlot::rules);
  EXPECT_EQ(named("index"), HookSlot::index);
  EXPECT_EQ(named("recall"), HookSlot::recall);
  EXPECT_EQ(named("pretool"), HookSlot::pretool);
}

TEST(SlotFlag, NamesEverySlotAsTheCommandLineDoes) {
  for (const std::string_view known : knownNames) EXPECT_EQ(name(*named(known)), known);
}

TEST(SlotFlag, MatchesTheWholeNameExactly) {
  for (const char* unknown :
       {"Rules", "Recall", "RULES", "rule", "ruless", " rules", "rules ", ""}) {
    EXPECT_EQ(named(unknown), std::nullopt) << unknown;
  }
}

}  // namespace
}  // namespace quillstead::hook::SlotFlag
