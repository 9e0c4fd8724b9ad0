#include "HookTest.h"

#include <array>
#include <string>
#include <vector>

namespace quillstead {
namespace {

const std::string shortcut = "<quillstead-shortcut>s</quillstead-shortcut>";
const std::string now = "<quillstead-now>n</quillstead-now>";

/// Card or rules text of exactly so many bytes.
std::string bytes(std::size_t count) {
  std::string text(count, 'b');
  for (std::size_t at = 0; at + 10 < count; at += 10) text[at] = ' ';
  return text;
}

std::string shortcutMember() { return R"(,"quillstead/shortcut":)" + jsonString(shortcut); }
std::string nowMember() { return R"(,"quillstead/now":)" + jsonString(now); }

class Budget : public HookTest {
 protected:
  /// Runs a slot; `texts` are what should go out, `trail` what is logged without card words.
  void expectRun(const Harness& harness, const std::string& slot,
                 const std::vector<std::string>& texts, const std::string& trail) const {
    SCOPED_TRACE(harness.name + " " + slot);
    forgetLog();
    HookStart start = starting(harness, slot);
    start.environment["QUILLSTEAD_RULES_CARD"] = "0";
    const HookEnd end = runHook(start, harness.payload({}));
    std::string context;
    for (const std::string& text : texts) context += (context.empty() ? "" : "\n\n") + text;
    if (texts.empty()) {
      EXPECT_EQ(end.output, harness.silentOutput());
    } else {
      EXPECT_THAT(end.output, isAnswer(harness.envelope(context)));
    }
    EXPECT_EQ(onlyRecord().trail, (slot.empty() ? "" : "slot=" + slot + " ") + trail);
  }

  void scriptRules(const std::string& block) { server.answer(rulesTool, block, rulesMeta); }

  void scriptCards(const std::string& block, const std::vector<std::string>& cards,
                   const std::string& more = {}) {
    server.answer(memoryTool, block, cardsMeta(cards, more));
  }

  static std::vector<Harness> limitedHarnesses() {
    std::vector<Harness> limited;
    for (const Harness& harness : harnesses()) {
      if (harness.budget) limited.push_back(harness);
    }
    return limited;
  }
};

TEST_F(Budget, IsEachHarnesssOwnToTheByte) {
  for (const Harness& harness : limitedHarnesses()) {
    const std::size_t budget = *harness.budget;
    scriptRules(bytes(budget));
    expectRun(harness, "rules", {bytes(budget)}, "rules=1");
    expectRun(harness, "", {bytes(budget)}, "rules=1 cards=MISS:no-envelope");
    scriptRules(bytes(budget + 1));
    expectRun(harness, "rules", {}, "rules=MISS:over-budget");
    expectRun(harness, "", {}, "rules=MISS:over-budget cards=MISS:no-envelope");
    expectRun(harness, "recall", {}, "rules=1 cards=MISS:no-envelope");
  }
}

TEST_F(Budget, CountsBytesNotCharacters) {
  for (const Harness& harness : limitedHarnesses()) {
    std::string text;
    while (text.size() < *harness.budget) text += "\u00fc";
    scriptRules(text);
    expectRun(harness, "rules", {text}, "rules=1");
    scriptRules(text + "x");
    expectRun(harness, "rules", {}, "rules=MISS:over-budget");
  }
}

TEST_F(Budget, OfOpenCodeHasNoLimit) {
  const Harness& openCode = harness("opencode");
  const std::vector<std::string> cards{bytes(150'000), bytes(150'000)};
  const std::string block = memoryBlock("", cards);
  scriptRules(bytes(300'000));
  scriptCards(block, {"wrong"}, shortcutMember() + nowMember());
  expectRun(openCode, "", {bytes(300'000), shortcut, now, block},
            "rules=1 shortcut=1 cards=1 now=1");
}

TEST_F(Budget, LeavesCardWordsAloneWhenTheRulesAreDropped) {
  for (const Harness& harness : limitedHarnesses()) {
    server.answer(rulesTool, bytes(*harness.budget + 1),
                  R"({"quillstead/replyKind":"rules","quillstead/rulesLane":"card"})");
    forgetLog();
    run(harness, "rules", "{}");
    EXPECT_EQ(onlyRecord().trail, "slot=rules card=1 rules=MISS:over-budget");
  }
}

TEST_F(Budget, DropsAnIndexWithoutAWordAgainstTheRules) {
  for (const Harness& harness : limitedHarnesses()) {
    const std::size_t fences = rulesBlock("").size();
    const std::string fitting = bytes(*harness.budget - fences);
    const std::string tooLong = fitting + "x";
    server.answer(rulesTool, rulesBlock("R", fitting), indexedMeta(fitting.size()));
    expectRun(harness, "index", {rulesBlock(fitting)}, "rules=1 index=1");
    server.answer(rulesTool, rulesBlock("R", tooLong), indexedMeta(tooLong.size()));
    expectRun(harness, "index", {}, "rules=1 index=MISS:over-budget");
    expectRun(harness, "rules", {rulesBlock("R")}, "rules=1");
    expectRun(harness, "", {}, "rules=MISS:over-budget cards=MISS:no-envelope");
  }
}

TEST_F(Budget, LeavesRoomForWhatFollowsWhenTheRulesAreDropped) {
  for (const Harness& harness : limitedHarnesses()) {
    scriptRules(bytes(*harness.budget + 1));
    scriptCards(memoryBlock("", {"card"}), {"card"}, shortcutMember() + nowMember());
    expectRun(harness, "", {shortcut, now, memoryBlock("", {"card"})},
              "rules=MISS:over-budget shortcut=1 cards=1 now=1");
  }
}

TEST_F(Budget, IsSpentByRulesThatFillIt) {
  for (const Harness& harness : limitedHarnesses()) {
    scriptCards(memoryBlock("", {"card"}), {"card"}, shortcutMember() + nowMember());
    for (std::size_t left = 0; left < 3; ++left) {
      const std::string rules = bytes(*harness.budget - left);
      scriptRules(rules);
      expectRun(harness, "", {rules}, "rules=1 shortcut=MISS:over-budget cards=1 trimmed=1");
    }
  }
}

TEST_F(Budget, CountsTwoBytesBetweenTexts) {
  const std::string memory = memoryBlock("header", {"a card"});
  for (const Harness& harness : limitedHarnesses()) {
    scriptCards(memory, {"a card"}, shortcutMember() + nowMember());
    const std::size_t others = shortcut.size() + 2 + now.size() + 2 + memory.size() + 2;
    const std::string rules = bytes(*harness.budget - others);
    scriptRules(rules);
    expectRun(harness, "", {rules, shortcut, now, memory}, "rules=1 shortcut=1 cards=1 now=1");
    scriptRules(rules + "x");
    expectRun(harness, "", {rules + "x", shortcut, now},
              "rules=1 shortcut=1 cards=1 trimmed=1 now=1");
  }
}

TEST_F(Budget, DropsAShortcutThatDoesNotFitAndGoesOn) {
  for (const Harness& harness : limitedHarnesses()) {
    scriptCards(memoryBlock("", {"c"}), {"c"}, shortcutMember() + nowMember());
    const std::string fitting = bytes(*harness.budget - 2 - shortcut.size());
    scriptRules(fitting);
    expectRun(harness, "", {fitting, shortcut}, "rules=1 shortcut=1 cards=1 trimmed=1");
    scriptRules(fitting + "x");
    expectRun(harness, "", {fitting + "x", now},
              "rules=1 shortcut=MISS:over-budget cards=1 trimmed=1 now=1");
  }
}

TEST_F(Budget, DropsAJustEndedNoteThatDoesNotFitWithoutAWord) {
  for (const Harness& harness : limitedHarnesses()) {
    scriptCards(memoryBlock("", {"c"}), {"c"}, nowMember());
    const std::string fitting = bytes(*harness.budget - 2 - now.size());
    scriptRules(fitting);
    expectRun(harness, "", {fitting, now}, "rules=1 cards=1 trimmed=1 now=1");
    scriptRules(fitting + "x");
    expectRun(harness, "", {fitting + "x"}, "rules=1 cards=1 trimmed=1");
  }
}

TEST_F(Budget, CorrectsAShortcutsWordInItsPlace) {
  for (const Harness& harness : limitedHarnesses()) {
    const std::string longShortcut = "<quillstead-shortcut>" + bytes(*harness.budget);
    server.answer(rulesTool, "", emptyMeta);
    scriptCards(memoryBlock("", {"c"}), {"c"},
                R"(,"quillstead/shortcut":)" + jsonString(longShortcut) + nowMember());
    expectRun(harness, "recall", {now, memoryBlock("", {"c"})},
              "rules=0 shortcut=MISS:over-budget cards=1 now=1");
  }
}

TEST_F(Budget, TrimsTheMemoryCardByCardFromItsEnd) {
  // Three cards that begin at byte 40, and 200 bytes of room: two cards would take 213, one takes
  // 161.
  const std::vector<std::string> cards{bytes(100), bytes(50), bytes(10)};
  const std::string header = bytes(18);
  const std::string memory = memoryBlock(header, cards);
  ASSERT_EQ(memory.find(cards[0]), 40U);
  for (const Harness& harness : limitedHarnesses()) {
    scriptCards(memory, cards);
    const auto withRoomFor = [&](std::size_t room) {
      std::string rules = bytes(*harness.budget - room - 2);
      scriptRules(rules);
      return rules;
    };
    const std::string one = memoryBlock(header, {cards[0]});
    const std::string two = memoryBlock(header, {cards[0], cards[1]});
    ASSERT_EQ(one.size(), 161U);
    ASSERT_EQ(two.size(), 213U);
    ASSERT_EQ(memory.size(), 225U);
    expectRun(harness, "", {withRoomFor(225), memory}, "rules=1 cards=3");
    expectRun(harness, "", {withRoomFor(224), two}, "rules=1 cards=3 trimmed=1");
    expectRun(harness, "", {withRoomFor(213), two}, "rules=1 cards=3 trimmed=1");
    expectRun(harness, "", {withRoomFor(212), one}, "rules=1 cards=3 trimmed=2");
    expectRun(harness, "", {withRoomFor(200), one}, "rules=1 cards=3 trimmed=2");
    expectRun(harness, "", {withRoomFor(161), one}, "rules=1 cards=3 trimmed=2");
    expectRun(harness, "", {withRoomFor(160)}, "rules=1 cards=3 trimmed=3");
  }
}

TEST_F(Budget, DropsTheMemoryWholeWhenItCannotBeMeasured) {
  const Harness& cursor = harness("cursor");
  server.answer(rulesTool, "", emptyMeta);
  const std::string a = bytes(5'000);
  const std::string b = bytes(5'000);
  const std::string memory = memoryBlock("h", {a, b});
  const std::string closing = "\n</quillstead-memory>";
  const std::vector<std::array<std::string, 3>> table{
      // block, spans, count
      {memory, "[5000]", "2"},
      {memory, "[5000,5000,1]", "2"},
      {memory, "[5000,0]", "2"},
      {memory, "[5000,5000.0]", "2"},
      {memory, "[5000,\"5000\"]", "2"},
      {memory, "[true,5000]", "2"},
      {memory, "[4999,5001]", "2"},
      {memory, "[5001,4999]", "2"},
      {memory, "[5000,4999]", "2"},
      {memory, "[10002]", "1"},
      {memory, "null", "2"},
      {memory, "{}", "2"},
      {memory, "\"5000,5000\"", "2"},
      {memory, "[3334,3333,3333]", "3"},
      {memory + "\n", "[5000,5000]", "2"},
      {" " + memory, "[5000,5000]", "2"},
      {a + "\n\n" + b, "[5000,5000]", "2"},
      {"<quillstead-memory>\nh\n" + a + "\n\n" + b + closing, "[5000,5000]", "2"},
      {"<quillstead-memory>\nh\n\n" + a + "\n" + b + closing, "[5000,5000]", "2"},
      {"<quillstead-memory>\n\n" + a + "\n\n" + b + closing, "[5000,5000]", "2"},
  };
  for (const auto& [block, spans, count] : table) {
    SCOPED_TRACE(spans + " " + block.substr(0, 40));
    server.answer(memoryTool, block,
                  R"({"quillstead/replyKind":"cards","quillstead/cardCount":)" + count +
                      R"(,"quillstead/cardSpans":)" + spans + "}");
    expectRun(cursor, "recall", {}, "rules=0 cards=" + count + " trimmed=" + count);
  }
}

TEST_F(Budget, IsSafeFromSpansThatNoNumberCanHold) {
  const std::string memory = memoryBlock("h", {bytes(40'000), "c"});
  for (const Harness& harness : limitedHarnesses()) {
    for (const std::string spans :
         {"[9223372036854775807,9223372036854775807]", "[40000,9223372036854775807]",
          "[4611686018427387904,4611686018427387904]", "[123456789012345678901234567890,1]"}) {
      server.answer(rulesTool, "", emptyMeta);
      server.answer(memoryTool, memory,
                    R"({"quillstead/replyKind":"cards","quillstead/cardCount":2,)"
                    R"("quillstead/cardSpans":)" +
                        spans + "}");
      const HookEnd end = run(harness, "recall", harness.payload({}));
      EXPECT_EQ(end.output, harness.silentOutput()) << spans;
      EXPECT_EQ(end.status, 0) << spans;
    }
  }
}

TEST_F(Budget, KeepsAMemoryThatFitsWholeEvenWhenItsSpansAreWrong) {
  server.answer(rulesTool, "", emptyMeta);
  const std::string memory = memoryBlock("h", {"one", "two"});
  for (const Harness& harness : harnesses()) {
    for (const std::string spans : {"[1,1]", "[10,20]", "[0,5]", "null", "[3.0,3]", "[100]"}) {
      server.answer(memoryTool, memory,
                    R"({"quillstead/replyKind":"cards","quillstead/cardCount":2,)"
                    R"("quillstead/cardSpans":)" +
                        spans + "}");
      expectRun(harness, "recall", {memory}, "rules=0 cards=2");
    }
  }
}

TEST_F(Budget, TrimsAfterAnEmptyHeader) {
  const Harness& cursor = harness("cursor");
  server.answer(rulesTool, "", emptyMeta);
  const std::vector<std::string> cards{bytes(3'000), "zwei ü 🙂", bytes(6'000)};
  scriptCards(memoryBlock("", cards), cards);
  expectRun(cursor, "recall", {memoryBlock("", {cards[0], cards[1]})}, "rules=0 cards=3 trimmed=1");
}

TEST_F(Budget, TrimsManyCards) {
  std::vector<std::string> cards;
  for (int card = 0; card < 999; ++card)
    cards.push_back("card " + std::to_string(card) + bytes(90));
  server.answer(rulesTool, "", emptyMeta);
  scriptCards(memoryBlock("999 of them", cards), cards);
  for (const Harness& harness : limitedHarnesses()) {
    std::vector<std::string> kept = cards;
    while (memoryBlock("999 of them", kept).size() > *harness.budget) kept.pop_back();
    expectRun(harness, "recall", {memoryBlock("999 of them", kept)},
              "rules=0 cards=999 trimmed=" + std::to_string(999 - kept.size()));
  }
}

}  // namespace
}  // namespace quillstead
