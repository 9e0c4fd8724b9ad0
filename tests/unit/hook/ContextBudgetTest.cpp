#include "hook/ContextBudget.h"

#include <gtest/gtest.h>

#include <numeric>

namespace quillstead::hook::ContextBudget {
namespace {

using Spans = std::vector<std::int64_t>;
using Strings = std::vector<std::string>;

std::string letters(std::size_t count, char letter = 'x') { return std::string(count, letter); }

/// A memory block of cards a, b, c … of these sizes behind a header.
std::string memoryOf(const Spans& spans, const std::string& header = "") {
  std::string block = "<quillstead-memory>\n" + header;
  char letter = 'a';
  for (const std::int64_t span : spans) {
    block += "\n\n" + letters(static_cast<std::size_t>(span), letter++);
  }
  return block + "\n</quillstead-memory>";
}

/// The texts of a memory block alone.
Texts memoryTexts(const Spans& spans, std::int64_t limit, const std::string& header = "") {
  return {.rules = {},
          .memory = memoryOf(spans, header),
          .cardCount = static_cast<std::int64_t>(spans.size()),
          .cardSpans = spans,
          .limit = limit,
          .shortcut = {},
          .justEnded = {}};
}

Texts texts(std::optional<std::string> rules, std::optional<std::string> shortcut,
            std::optional<std::string> justEnded, std::optional<std::string> memory,
            std::optional<std::int64_t> limit) {
  return {.rules = std::move(rules),
          .memory = std::move(memory),
          .cardCount = {},
          .cardSpans = {},
          .limit = limit,
          .shortcut = std::move(shortcut),
          .justEnded = std::move(justEnded)};
}

TEST(ContextBudget, PassesEverythingThroughWithoutALimit) {
  const Strings all{letters(100'000, 'r'), letters(100'000, 's'), letters(100'000, 'j'),
                    letters(100'000, 'm')};
  const Fitted fitted = fit(texts(all[0], all[1], all[2], all[3], std::nullopt));
  EXPECT_EQ(fitted.texts, all);
  EXPECT_FALSE(fitted.rulesOverBudget);
  EXPECT_FALSE(fitted.shortcutOverBudget);
  EXPECT_EQ(fitted.cardsDropped, 0);
  EXPECT_TRUE(fitted.justEndedKept);
}

TEST(ContextBudget, LeavesAbsentTextsOutWithoutALimit) {
  const Fitted fitted = fit(texts({}, "s", {}, "m", {}));
  EXPECT_EQ(fitted.texts, (Strings{"s", "m"}));
  EXPECT_FALSE(fitted.justEndedKept);
  EXPECT_TRUE(fit(texts({}, {}, {}, {}, {})).texts.empty());
}

TEST(ContextBudget, GivesNothingForNothing) {
  const Fitted fitted = fit(texts({}, {}, {}, {}, 100));
  EXPECT_TRUE(fitted.texts.empty());
  EXPECT_FALSE(fitted.rulesOverBudget);
  EXPECT_FALSE(fitted.shortcutOverBudget);
  EXPECT_FALSE(fitted.justEndedKept);
  EXPECT_EQ(fitted.cardsDropped, 0);
}

TEST(ContextBudget, KeepsRulesExactlyAsLongAsTheLimitAndThenNothingElse) {
  const Fitted fitted = fit(texts(letters(10, 'r'), "s", "j", "m", 10));
  EXPECT_EQ(fitted.texts, Strings{letters(10, 'r')});
  EXPECT_FALSE(fitted.rulesOverBudget);
  EXPECT_TRUE(fitted.shortcutOverBudget);
  EXPECT_FALSE(fitted.justEndedKept);
  EXPECT_EQ(fitted.cardsDropped, 0);
}

TEST(ContextBudget, DropsAndFlagsRulesOneByteTooLongAndLetsTheShortcutOut) {
  const Fitted fitted = fit(texts(letters(11, 'r'), letters(10, 's'), {}, {}, 10));
  EXPECT_EQ(fitted.texts, Strings{letters(10, 's')});
  EXPECT_TRUE(fitted.rulesOverBudget);
  EXPECT_FALSE(fitted.shortcutOverBudget);
}

TEST(ContextBudget, ChargesTwoBytesForEachTextBeforeTheNext) {
  struct Case {
    std::int64_t limit;
    Strings kept;
    bool shortcutOverBudget;
  };
  // rules 3 + 2, shortcut 4 + 2, just ended 5 + 2, memory 6
  for (const Case& one :
       {Case{24, {"rrr", "ssss", "jjjjj", "mmmmmm"}, false},
        Case{23, {"rrr", "ssss", "jjjjj"}, false}, Case{16, {"rrr", "ssss", "jjjjj"}, false},
        Case{15, {"rrr", "ssss"}, false}, Case{9, {"rrr", "ssss"}, false}, Case{8, {"rrr"}, true},
        Case{3, {"rrr"}, true}, Case{2, {}, true}}) {
    SCOPED_TRACE(one.limit);
    const Fitted fitted = fit(texts("rrr", "ssss", "jjjjj", "mmmmmm", one.limit));
    EXPECT_EQ(fitted.texts, one.kept);
    EXPECT_EQ(fitted.rulesOverBudget, one.limit < 3);
    EXPECT_EQ(fitted.shortcutOverBudget, one.shortcutOverBudget);
    EXPECT_EQ(fitted.justEndedKept, one.kept.size() > 2);
  }
}

TEST(ContextBudget, FreesTheRoomOfADroppedTextForTheLaterOnes) {
  const Fitted fitted = fit(texts("rrr", letters(20, 's'), "jjjjj", "mm", 14));
  EXPECT_EQ(fitted.texts, (Strings{"rrr", "jjjjj", "mm"}));
  EXPECT_TRUE(fitted.shortcutOverBudget);
  EXPECT_TRUE(fitted.justEndedKept);
}

TEST(ContextBudget, NeverDropsAnEarlierTextForALaterOne) {
  const Fitted fitted = fit(texts(letters(90, 'r'), "s", "j", letters(50, 'm'), 100));
  EXPECT_EQ(fitted.texts, (Strings{letters(90, 'r'), "s", "j"}));
}

TEST(ContextBudget, DropsTheJustEndedNoteWithoutAFlag) {
  const Fitted fitted = fit(texts({}, {}, letters(11), {}, 10));
  EXPECT_TRUE(fitted.texts.empty());
  EXPECT_FALSE(fitted.justEndedKept);
  EXPECT_FALSE(fitted.shortcutOverBudget);
  EXPECT_FALSE(fitted.rulesOverBudget);
}

TEST(ContextBudget, TakesEmptyTextsForTexts) {
  const Fitted fitted = fit(texts("", "", "", "", 6));
  EXPECT_EQ(fitted.texts, (Strings{"", "", "", ""}));
  EXPECT_EQ(fit(texts("", "", "", "", 5)).texts, (Strings{"", "", ""}));
}

TEST(ContextBudget, KeepsAsManyCardsAsFit) {
  const Spans spans{100, 50, 10};
  const std::string header = letters(18);  // so that the first card begins at byte 40
  struct Case {
    std::int64_t limit;
    std::int64_t kept;
  };
  for (const Case& one : {Case{225, 3}, Case{224, 2}, Case{213, 2}, Case{212, 1}, Case{200, 1},
                          Case{161, 1}, Case{160, 0}, Case{0, 0}, Case{-1, 0}}) {
    SCOPED_TRACE(one.limit);
    const Fitted fitted = fit(memoryTexts(spans, one.limit, header));
    EXPECT_EQ(fitted.cardsDropped, 3 - one.kept);
    if (one.kept == 0) {
      EXPECT_TRUE(fitted.texts.empty());
    } else {
      EXPECT_EQ(fitted.texts,
                Strings{memoryOf(Spans(spans.begin(), spans.begin() + one.kept), header)});
    }
  }
}

TEST(ContextBudget, TrimsTheMemoryIntoWhatTheEarlierTextsLeave) {
  Texts all = memoryTexts({30, 30, 30}, 0);
  const auto oneCard = static_cast<std::int64_t>(memoryOf({30}).size());
  all.rules = "rrr";
  all.shortcut = "ssss";
  all.justEnded = "jjjjj";
  all.limit = 5 + 6 + 7 + oneCard;
  const Fitted fitted = fit(all);
  EXPECT_EQ(fitted.texts, (Strings{"rrr", "ssss", "jjjjj", memoryOf({30})}));
  EXPECT_EQ(fitted.cardsDropped, 2);
  all.limit = *all.limit - 1;
  EXPECT_EQ(fit(all).texts, (Strings{"rrr", "ssss", "jjjjj"}));
  EXPECT_EQ(fit(all).cardsDropped, 3);
}

TEST(ContextBudget, KeepsAMemoryThatFitsByteForByteEvenWhenItsSpansAreWrong) {
  for (const Spans& wrong : {Spans{}, Spans{0}, Spans{1, 2, 3}, Spans{INT64_MAX, INT64_MAX}}) {
    Texts all = memoryTexts({10, 10}, 1'000);
    all.cardSpans = wrong;
    const Fitted fitted = fit(all);
    EXPECT_EQ(fitted.texts, Strings{memoryOf({10, 10})});
    EXPECT_EQ(fitted.cardsDropped, 0);
  }
  EXPECT_EQ(fit(texts({}, {}, {}, "\xFFno fence", 1'000)).texts, Strings{"\xFFno fence"});
}

TEST(ContextBudget, DropsAMemoryWholeWhenItDoesNotHaveTheShapeOfItsSpans) {
  struct Case {
    const char* name;
    std::optional<std::int64_t> count;
    std::optional<Spans> spans;
    std::int64_t dropped;
  };
  for (const Case& one : {
           Case{"no count", std::nullopt, Spans{20, 20}, 0},
           Case{"no spans", 2, std::nullopt, 2},
           Case{"neither", std::nullopt, std::nullopt, 0},
           Case{"a count of 0", 0, Spans{}, 0},
           Case{"fewer spans than cards", 2, Spans{20}, 2},
           Case{"more spans than cards", 2, Spans{20, 10, 8}, 2},
           Case{"a span of 0", 2, Spans{42, 0}, 2},
           Case{"a negative span", 2, Spans{41, -1}, 2},
           Case{"a gap at the wrong place", 2, Spans{19, 21}, 2},
           Case{"spans that are too short", 2, Spans{20, 19}, 2},
           Case{"spans that are too long", 2, Spans{21, 20}, 2},
           Case{"spans that reach into the fence", 2, Spans{60, 20}, 2},
           Case{"spans near the end of 64 bits", 2, Spans{INT64_MAX, INT64_MAX}, 2},
           Case{"spans that add up to less than nothing", 2, Spans{INT64_MAX, 42}, 2},
           Case{"spans that add up to the right size by overflow", 3,
                Spans{INT64_MAX, INT64_MAX, 42}, 3},
       }) {
    SCOPED_TRACE(one.name);
    Texts all = memoryTexts({20, 20}, 70);
    all.cardCount = one.count;
    all.cardSpans = one.spans;
    const Fitted fitted = fit(all);
    EXPECT_TRUE(fitted.texts.empty());
    EXPECT_EQ(fitted.cardsDropped, one.dropped);
  }
  EXPECT_EQ(fit(memoryTexts({20, 20}, 70)).texts, Strings{memoryOf({20})}) << "the right shape";
}

TEST(ContextBudget, DropsAMemoryThatIsNotFencedWhenItDoesNotFit) {
  for (const std::string& block :
       {std::string("no fence at all, but longer than what fits"), memoryOf({20, 20}) + "\n",
        " " + memoryOf({20, 20}),
        "<quillstead-memory>\n\n" + letters(20) + "\n</quillstead-memory>"}) {
    Texts all = memoryTexts({20, 20}, 30);
    all.memory = block;
    EXPECT_TRUE(fit(all).texts.empty()) << block;
    EXPECT_EQ(fit(all).cardsDropped, 2);
  }
}

TEST(ContextBudget, NeverGivesMoreThanTheLimit) {
  const Spans spans{7, 1, 12, 3};
  for (std::int64_t limit = 0; limit < 200; ++limit) {
    for (unsigned present = 0; present < 8; ++present) {
      Texts all = memoryTexts(spans, limit, "header");
      if (present & 1U) all.rules = letters(17, 'r');
      if (present & 2U) all.shortcut = letters(29, 's');
      if (present & 4U) all.justEnded = letters(5, 'j');
      const Fitted fitted = fit(all);
      std::size_t joined = 0;
      for (const std::string& text : fitted.texts) joined += text.size() + (joined > 0 ? 2 : 0);
      ASSERT_LE(joined, static_cast<std::size_t>(limit)) << present;
      // One card more would not have fitted.
      const std::int64_t kept = 4 - fitted.cardsDropped;
      if (fitted.cardsDropped == 0) continue;
      const std::size_t withOneMore =
          memoryOf(Spans(spans.begin(), spans.begin() + kept + 1), "header").size();
      const std::size_t others = kept == 0 ? joined : joined - fitted.texts.back().size() - 2;
      const bool alone = fitted.texts.size() == (kept == 0 ? 0U : 1U);
      ASSERT_GT((alone ? 0 : others + 2) + withOneMore, static_cast<std::size_t>(limit));
    }
  }
}

TEST(Envelope, MeasuresABlockOfExactlyTheseCards) {
  EXPECT_EQ(Envelope::opening.size(), 20U);
  EXPECT_EQ(Envelope::closing.size(), 21U);
  EXPECT_TRUE(Envelope::measured(memoryOf({5, 6}), {5, 6}));
  EXPECT_TRUE(Envelope::measured(memoryOf({1}), {1}));
  EXPECT_TRUE(Envelope::measured(memoryOf({5, 6}, "any header\nof lines"), {5, 6}));
  EXPECT_FALSE(Envelope::measured(memoryOf({5, 6}), {}));
  EXPECT_FALSE(Envelope::measured(memoryOf({5, 6}), {6, 5}));
  EXPECT_FALSE(Envelope::measured(memoryOf({}), {1}));
  EXPECT_FALSE(Envelope::measured("<quillstead-memory>\n</quillstead-memory>", {1}));
}

TEST(Envelope, CountsTheLastCardsOfALongerBlockWhenTheSpansNameFewer) {
  const auto envelope = Envelope::measured(memoryOf({5, 6, 7}), {6, 7});
  ASSERT_TRUE(envelope);  // the first card is header then
  EXPECT_EQ(envelope->rendered(1), memoryOf({5, 6}));
}

TEST(Envelope, RendersItsHeaderAndFirstCards) {
  const auto envelope = Envelope::measured(memoryOf({5, 6, 7}, "head"), {5, 6, 7});
  ASSERT_TRUE(envelope);
  EXPECT_EQ(envelope->cardCount(), 3U);
  EXPECT_EQ(envelope->rendered(1), memoryOf({5}, "head"));
  EXPECT_EQ(envelope->rendered(2), memoryOf({5, 6}, "head"));
  EXPECT_EQ(envelope->rendered(3), memoryOf({5, 6, 7}, "head"));
}

TEST(Envelope, ReplacesACharacterThatACutBreaks) {
  const std::string block =
      "<quillstead-memory>\n\n\na\xC3\n\n\xA9"
      "b\n</quillstead-memory>";
  const auto envelope = Envelope::measured(block, {2, 2});
  ASSERT_TRUE(envelope);
  EXPECT_EQ(envelope->rendered(1), "<quillstead-memory>\n\n\na\xEF\xBF\xBD\n</quillstead-memory>");
}

}  // namespace
}  // namespace quillstead::hook::ContextBudget
