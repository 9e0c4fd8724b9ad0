#include "HookTest.h"

#include <string>
#include <vector>

namespace quillstead {
namespace {

class Rules : public HookTest {
 protected:
  /// Runs a slot of every harness; `context` is what should go out, empty for nothing.
  void expectRun(const std::string& slot, const std::string& context, const std::string& trail,
                 const std::string& card = "0") const {
    for (const Harness& harness : harnesses()) {
      SCOPED_TRACE(harness.name + " " + slot);
      forgetLog();
      HookStart start = starting(harness, slot);
      start.environment["QUILLSTEAD_RULES_CARD"] = card;
      const HookEnd end = runHook(start, "{}");
      if (context.empty()) {
        EXPECT_EQ(end.output, harness.silentOutput());
      } else {
        EXPECT_THAT(end.output, isAnswer(harness.envelope(context)));
      }
      EXPECT_EQ(onlyRecord().trail, (slot.empty() ? "" : "slot=" + slot + " ") + trail);
    }
  }

  /// Scripts a rules block with this index span, given as JSON.
  void scriptSpan(const std::string& block, const std::string& span) {
    server.answer(rulesTool, block,
                  R"({"quillstead/replyKind":"rules","quillstead/indexSpan":)" + span + "}");
  }

  void expectSplit(const std::string& block, const std::string& span, const std::string& head,
                   const std::string& index) {
    SCOPED_TRACE(block + " " + span);
    scriptSpan(block, span);
    expectRun("", block, "rules=1");
    expectRun("rules", head, "rules=1");
    expectRun("index", index, "rules=1 index=1");
    expectRun("recall", "", "rules=1");
  }

  /// `indexWord`: what the trail of the index slot says.
  void expectNoSplit(const std::string& block, const std::string& span,
                     const std::string& indexWord) {
    SCOPED_TRACE(block + " " + span);
    scriptSpan(block, span);
    expectRun("", block, "rules=1");
    expectRun("rules", block, "rules=1");
    expectRun("index", "", "rules=1 " + indexWord);
  }
};

TEST_F(Rules, NeedAKindThatTheyKnow) {
  for (const std::string value :
       {"null", R"("Rules")", R"("cards")", R"("")", "1", R"(["rules"])"}) {
    server.answer(rulesTool, "text", R"({"quillstead/replyKind":)" + value + "}");
    expectRun("rules", "", "rules=MISS:no-kind");
  }
  server.answer(rulesTool, "text", "{}");
  expectRun("", "", "rules=MISS:no-kind");
}

TEST_F(Rules, AreNoneInAnEmptyReplyWhateverItsText) {
  server.answer(rulesTool, "text", emptyMeta);
  expectRun("rules", "", "rules=0");
  expectRun("", "", "rules=0");
}

TEST_F(Rules, NeedAText) {
  server.answer(rulesTool, "", rulesMeta);
  expectRun("rules", "", "rules=MISS:no-kind");
}

TEST_F(Rules, GoOutAsTheServerWroteThem) {
  server.answer(rulesTool, " not even fenced\n", rulesMeta);
  expectRun("rules", " not even fenced\n", "rules=1");
  expectRun("", " not even fenced\n", "rules=1");
}

TEST_F(Rules, LogWhetherTheServerGaveTheCard) {
  const std::vector<std::pair<std::string, std::string>> table{
      {R"("quillstead/rulesLane":"card")", "card=1"},
      {R"("quillstead/rulesLane":"card","quillstead/card":"pointer")", "card=pointer"},
      {R"("quillstead/rulesLane":"card","quillstead/card":"whole")", "card=1"},
      {R"("quillstead/rulesLane":"card","quillstead/card":5)", "card=1"},
      {R"("quillstead/rulesLane":"full","quillstead/card":"pointer")", "card=miss"},
      {R"("quillstead/rulesLane":["card"])", "card=miss"},
      {R"("quillstead/rulesLane":"Card")", "card=miss"},
      {R"("quillstead/card":"pointer")", "card=miss"},
      {R"("x":1)", "card=miss"},
  };
  for (const auto& [meta, word] : table) {
    server.answer(rulesTool, "R", R"({"quillstead/replyKind":"rules",)" + meta + "}");
    expectRun("", "R", word + " rules=1", "1");
    expectRun("rules", "R", "rules=1", "0");
    server.answer(rulesTool, "R", R"({"quillstead/replyKind":"empty",)" + meta + "}");
    expectRun("rules", "", word + " rules=0", "1");
    server.answer(rulesTool, "R", "{" + meta + "}");
    expectRun("index", "", word + " rules=MISS:no-kind index=0", "1");
  }
}

TEST_F(Rules, LogNoCardWhenTheReplyIsMissed) {
  expectRun("rules", "", "rules=MISS:no-envelope", "1");
  expectRun("index", "", "rules=MISS:no-envelope index=0", "1");
}

TEST_F(Rules, SplitFromTheirIndexAtTheLineFeedBeforeIt) {
  expectSplit(rulesBlock("A", "IDX"), "3", rulesBlock("A"), rulesBlock("IDX"));
  expectSplit(rulesBlock("A\nB", "I\nJ"), "3", rulesBlock("A\nB"), rulesBlock("I\nJ"));
  expectSplit(rulesBlock("A\nB", "I\nJ"), "1", rulesBlock("A\nB\nI"), rulesBlock("J"));
  expectSplit(rulesBlock("", "IDX"), "3", rulesBlock(""), rulesBlock("IDX"));
  expectSplit(rulesBlock("ü🙂", "日本"), "6", rulesBlock("ü🙂"), rulesBlock("日本"));
}

TEST_F(Rules, StayWholeWhenTheSpanDoesNotEndAtALineFeed) {
  const std::string block = rulesBlock("A", "IDX");
  for (const std::string span :
       {"1", "2", "4", "5", "6", "18", "31", "32", "1000", "9223372036854775807"}) {
    expectNoSplit(block, span, "index=MISS:no-span");
  }
  expectNoSplit(rulesBlock("日\n本"), "2", "index=MISS:no-span");
  // The line feed of the opening fence is not one behind the rules.
  expectNoSplit(rulesBlock("IDX"), "3", "index=MISS:no-span");
}

TEST_F(Rules, StayWholeWhenTheirFencesAreNotAsTheyShouldBe) {
  const std::vector<std::string> table{
      "A\nIDX",
      rulesBlock("A", "IDX") + " ",
      rulesBlock("A", "IDX") + "\n",
      " " + rulesBlock("A", "IDX"),
      "<user-rules>A\nIDX\n</user-rules>",
      "<user-rules>\nA\nIDX</user-rules>",
      "<User-rules>\nA\nIDX\n</user-rules>",
      "<user-rules>\n</user-rules>",
      "<user-rules>\n",
  };
  for (const std::string& block : table) expectNoSplit(block, "3", "index=MISS:no-span");
}

TEST_F(Rules, HaveNoIndexWhenTheSpanIsNoPositiveInteger) {
  for (const std::string span : {"0", "-3", "3.0", "3e0", "true", R"("3")", "null", "[3]", "-0"}) {
    expectNoSplit(rulesBlock("A", "IDX"), span, "index=0");
  }
}

TEST_F(Rules, OfTheIndexSlotAreNothingWithoutASpan) {
  server.answer(rulesTool, rulesBlock("A", "IDX"), rulesMeta);
  expectRun("index", "", "rules=1 index=0");
}

}  // namespace
}  // namespace quillstead
