#include "hook/SlotPlan.h"

#include <gtest/gtest.h>

namespace quillstead::hook {
namespace {

using Rules = SlotPlan::Rules;

constexpr const char* block = "<user-rules>\nA\nIDX\n</user-rules>";
constexpr const char* head = "<user-rules>\nA\n</user-rules>";
constexpr const char* index = "<user-rules>\nIDX\n</user-rules>";

TEST(SlotPlan, SaysWhatEachSlotBrings) {
  struct Row {
    std::optional<HookSlot> slot;
    Rules rules;
    bool memory;
  };
  for (const Row& row : {Row{std::nullopt, Rules::whole, true},
                         {HookSlot::rules, Rules::head, false},
                         {HookSlot::index, Rules::index, false},
                         {HookSlot::recall, Rules::none, true},
                         {HookSlot::pretool, Rules::whole, false}}) {
    SCOPED_TRACE(row.slot ? SlotFlag::name(*row.slot) : "none");
    EXPECT_EQ(SlotPlan::of(row.slot).rules, row.rules);
    EXPECT_EQ(SlotPlan::of(row.slot).memory, row.memory);
  }
}

TEST(SlotRules, AreThePartThatIsWanted) {
  struct Row {
    const char* name;
    Rules part;
    std::optional<std::string> block;
    std::optional<std::int64_t> indexSpan;
    std::optional<std::string> text;
    std::optional<std::string_view> trailField;
  };
  for (const Row& row : {
           Row{"whole", Rules::whole, block, 3, block, {}},
           Row{"whole, of nothing", Rules::whole, {}, {}, {}, {}},
           Row{"head", Rules::head, block, 3, head, {}},
           Row{"head without an index", Rules::head, block, {}, block, {}},
           Row{"head that cannot be split off", Rules::head, block, 2, block, {}},
           Row{"head of nothing", Rules::head, {}, 3, {}, {}},
           Row{"index", Rules::index, block, 3, index, "index=1"},
           Row{"index without a span", Rules::index, block, {}, {}, "index=0"},
           Row{"index that cannot be split off", Rules::index, block, 2, {}, "index=MISS:no-span"},
           Row{"index of nothing", Rules::index, {}, {}, {}, "index=0"},
           Row{"none", Rules::none, block, 3, {}, {}},
       }) {
    const SlotRules rules = SlotRules::of(row.part, row.block, row.indexSpan);
    EXPECT_EQ(rules.text, row.text) << row.name;
    EXPECT_EQ(rules.trailField, row.trailField) << row.name;
  }
}

}  // namespace
}  // namespace quillstead::hook
