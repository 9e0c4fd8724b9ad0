#include "HookTest.h"

#include <string>
#include <vector>

namespace quillstead {
namespace {

const std::string shortcut = "<quillstead-shortcut>\ns\n</quillstead-shortcut>";
const std::string now = "<quillstead-now>\nn\n</quillstead-now>";

/// A field of metadata after others.
std::string also(const std::string& key, const std::string& value) {
  return R"(,"quillstead/)" + key + R"(":)" + value;
}

class Recall : public HookTest {
 protected:
  void SetUp() override { server.answer(rulesTool, "", emptyMeta); }

  /// Runs the recall slot against a memory server with this answer; `context` is what should go
  /// out, empty for nothing, and `trail` what is logged behind the rules.
  void expectRecall(const std::string& text, const std::string& meta, const std::string& context,
                    const std::string& trail) {
    server.answer(memoryTool, text, meta);
    for (const Harness& harness : harnesses()) {
      SCOPED_TRACE(harness.name + " " + meta);
      forgetLog();
      const HookEnd end = run(harness, "recall", harness.payload({}));
      if (context.empty()) {
        EXPECT_EQ(end.output, harness.silentOutput());
      } else {
        EXPECT_THAT(end.output, isAnswer(harness.envelope(context)));
      }
      EXPECT_EQ(end.error, "");
      EXPECT_EQ(onlyRecord().trail, "slot=recall card=miss rules=0 " + trail);
    }
  }

  static std::string kind(const std::string& kind, const std::string& more) {
    return R"({"quillstead/replyKind":)" + kind + more + "}";
  }
};

TEST_F(Recall, BringsCards) {
  const std::vector<std::string> cards{"one", "two"};
  const std::string block = memoryBlock("header", cards);
  expectRecall(block, cardsMeta(cards), block, "cards=2");
}

TEST_F(Recall, BringsCardsAsTheServerWroteThem) {
  expectRecall(" not even fenced ", kind(R"("cards")", also("cardCount", "7")), " not even fenced ",
               "cards=7");
}

TEST_F(Recall, NeedsAKindThatItKnows) {
  for (const std::string value :
       {"null", R"("Cards")", R"("cards ")", R"("rules")", R"("")", "1", R"(["cards"])"}) {
    expectRecall("text", kind(value, also("cardCount", "1")), "", "cards=MISS:no-kind");
  }
  expectRecall("text", R"({"quillstead/cardCount":1})", "", "cards=MISS:no-kind");
}

TEST_F(Recall, HasNoCardsInAnEmptyReplyWhateverItsText) {
  expectRecall("text", kind(R"("empty")", also("cardCount", "3")), "", "cards=0");
  expectRecall("", std::string(emptyMeta), "", "cards=0");
}

TEST_F(Recall, NeedsATextForItsCards) {
  expectRecall("", kind(R"("cards")", also("cardCount", "1")), "", "cards=MISS:no-kind");
}

TEST_F(Recall, NeedsAnIntegerCountFromOneToNineHundredAndNinetyNine) {
  for (const std::string good : {"1", "2", "999"}) {
    expectRecall("text", kind(R"("cards")", also("cardCount", good)), "text", "cards=" + good);
  }
  for (const std::string bad :
       {"true", "false", "0", "-1", "1000", "2.0", "2e0", "1E0", "0.5", R"("2")", "null", "[2]",
        "{}", "-0", "9223372036854775808", "123456789012345678901234567890"}) {
    expectRecall("text", kind(R"("cards")", also("cardCount", bad)), "", "cards=MISS:no-kind");
  }
  expectRecall("text", kind(R"("cards")", ""), "", "cards=MISS:no-kind");
}

TEST_F(Recall, BringsAShortcutWithWhateverElseThereIs) {
  const std::string more = also("shortcut", jsonString(shortcut));
  expectRecall("", kind(R"("empty")", more), shortcut, "shortcut=1 cards=0");
  expectRecall("", kind(R"("other")", more), shortcut, "shortcut=1 cards=MISS:no-kind");
  expectRecall("C", kind(R"("cards")", more + also("cardCount", "1")), shortcut + "\n\nC",
               "shortcut=1 cards=1");
}

TEST_F(Recall, BringsAJustEndedNoteWithWhateverElseThereIs) {
  const std::string more = also("now", jsonString(now));
  expectRecall("", kind(R"("empty")", more), now, "cards=0 now=1");
  expectRecall("", kind(R"("other")", more), now, "cards=MISS:no-kind now=1");
  expectRecall("C", kind(R"("cards")", more + also("cardCount", "1")), now + "\n\nC",
               "cards=1 now=1");
}

TEST_F(Recall, NeedsFencedTextsToBeginWithTheirTags) {
  const std::vector<std::string> bad{
      R"(" <quillstead-shortcut>s")",
      R"("\n<quillstead-shortcut>s")",
      R"("<quillstead-shortcut")",
      R"("<Quillstead-shortcut>s")",
      R"("<quillstead-now>s")",
      R"("s")",
      R"("")",
      R"("  ")",
      "null",
      "5",
      "true",
      R"(["<quillstead-shortcut>s"])",
  };
  for (const std::string& value : bad) {
    expectRecall("", kind(R"("empty")", also("shortcut", value)), "", "cards=0");
  }
  for (const std::string value :
       {R"(" <quillstead-now>n")", R"("<quillstead-shortcut>n")", "null", R"("")", "5"}) {
    expectRecall("", kind(R"("empty")", also("now", value)), "", "cards=0");
  }
}

TEST_F(Recall, KeepsFencedTextsUntrimmed) {
  const std::string text = "<quillstead-shortcut> s \n\n ";
  expectRecall("", kind(R"("empty")", also("shortcut", jsonString(text))), text,
               "shortcut=1 cards=0");
  const std::string bare = "<quillstead-now>";
  expectRecall("", kind(R"("empty")", also("now", jsonString(bare))), bare, "cards=0 now=1");
}

TEST_F(Recall, LogsWhyThereIsNoShortcut) {
  const std::string longest(32, 'r');
  for (const std::string& good : {std::string("none"), std::string("no-Match-2"), std::string("-"),
                                  std::string("9"), longest}) {
    expectRecall("", kind(R"("empty")", also("shortcutMiss", jsonString(good))), "",
                 "shortcut=MISS:" + good + " cards=0");
  }
  for (const std::string& bad :
       {jsonString(longest + "r"), std::string(R"("a_b")"), std::string(R"("a b")"),
        std::string(R"("é")"), std::string(R"("")"), std::string(R"("a\n")"),
        std::string(R"("a:b")"), std::string("5"), std::string("null"), std::string("true"),
        std::string(R"(["a"])")}) {
    expectRecall("", kind(R"("empty")", also("shortcutMiss", bad)), "", "cards=0");
  }
}

TEST_F(Recall, LogsTheReasonWhenTheShortcutIsRefusedAndNoneWhenItIsThere) {
  expectRecall("",
               kind(R"("empty")", also("shortcut", R"(" <quillstead-shortcut>")") +
                                      also("shortcutMiss", R"("late")")),
               "", "shortcut=MISS:late cards=0");
  expectRecall("",
               kind(R"("empty")",
                    also("shortcut", jsonString(shortcut)) + also("shortcutMiss", R"("late")")),
               shortcut, "shortcut=1 cards=0");
}

TEST_F(Recall, BringsNothingWhenTheReplyIsMissed) {
  server.giveResult(
      memoryTool,
      R"({"isError":true,"content":[{"type":"text","text":"C"}],"_meta":)" +
          kind(R"("cards")", also("cardCount", "1") + also("shortcut", jsonString(shortcut)) +
                                 also("now", jsonString(now))) +
          "}");
  for (const Harness& harness : harnesses()) {
    forgetLog();
    EXPECT_EQ(run(harness, "recall", harness.payload({})).output, harness.silentOutput());
    EXPECT_EQ(onlyRecord().trail, "slot=recall card=miss rules=0 cards=MISS:no-envelope");
  }
}

TEST_F(Recall, IsNotAskedForABlankPrompt) {
  server.answer(memoryTool, "C", cardsMeta({"C"}));
  for (const Harness& harness : harnesses()) {
    for (const std::string prompt : {"", " ", "\n \t\r\n", "\u00a0\u2003\u2028"}) {
      for (const std::string& slot : promptSlots) {
        forgetLog();
        const std::size_t before = server.calls().size();
        EXPECT_EQ(run(harness, slot, harness.payload({.prompt = prompt})).output,
                  harness.silentOutput());
        EXPECT_EQ(server.calls().size(), before + 1);
        EXPECT_EQ(server.calls().back().tool(), rulesTool);
        EXPECT_EQ(onlyRecord().stageNames(), "parse rules compose write");
        EXPECT_EQ(onlyRecord().trail.find("cards="), std::string::npos);
      }
    }
  }
}

}  // namespace
}  // namespace quillstead
