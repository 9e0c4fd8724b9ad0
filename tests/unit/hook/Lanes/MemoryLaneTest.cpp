#include "hook/Lanes/MemoryLane.h"
#include "support/JSON/Writer.h"
#include "unit/helpers/JSONValues.h"
#include "unit/helpers/Server.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace quillstead::hook::MemoryLane {
namespace {

using Spans = std::vector<std::int64_t>;
using Fields = std::vector<std::string>;

constexpr std::string_view tool = "memory_get_relevant";
constexpr std::string_view tag = "<quillstead-shortcut>";

/// A JSON text as a value of the metadata; "absent" for none.
class MetaValue {
 public:
  explicit MetaValue(const std::string& json)
      : list_(unit::documentIn(json == "absent" ? "[]" : "[" + json + "]")) {}

  [[nodiscard]] JSON::View get() const {
    const JSON::ArrayView elements = *list_.root().array();
    return elements.empty() ? JSON::View() : elements.front();
  }

 private:
  JSON::Document list_;
};

LaneOutcome ran(std::string_view meta, std::string_view text = "the cards") {
  const unit::Server server;
  server.answer(tool, text, meta);
  return run({.prompt = "p", .cwd = {}, .sessionID = {}, .transcriptPath = {}}, server.client(),
             unit::ampleDeadline());
}

void expectNoCards(const LaneOutcome& outcome) {
  EXPECT_EQ(outcome.block, std::nullopt);
  EXPECT_EQ(outcome.cardCount, std::nullopt);
  EXPECT_EQ(outcome.cardSpans, std::nullopt);
}

// --- Arguments

TEST(MemoryLane, SendsThePromptAndWhatElseThereIs) {
  EXPECT_EQ(
      JSON::write(arguments({.prompt = "p", .cwd = "/c", .sessionID = "s", .transcriptPath = "/t"}),
                  JSON::Slashes::plain),
      R"({"prompt":"p","cwd":"/c","session_id":"s","transcript_path":"/t"})");
  EXPECT_EQ(JSON::write(arguments({.prompt = "", .cwd = {}, .sessionID = {}, .transcriptPath = {}}),
                        JSON::Slashes::plain),
            R"({"prompt":""})");
  EXPECT_EQ(
      JSON::write(arguments({.prompt = "p", .cwd = {}, .sessionID = " s ", .transcriptPath = {}}),
                  JSON::Slashes::plain),
      R"({"prompt":"p","session_id":" s "})");
}

TEST(MemoryLane, CallsItsToolWithItsArguments) {
  const unit::Server server;
  run({.prompt = "p", .cwd = "/c", .sessionID = {}, .transcriptPath = "/t"}, server.client(),
      unit::ampleDeadline());
  EXPECT_EQ(JSON::write(server.arguments(tool), JSON::Slashes::plain),
            R"({"prompt":"p","cwd":"/c","transcript_path":"/t"})");
}

// --- Validation

TEST(MemoryLane, TakesATextThatBeginsWithItsTagUntrimmed) {
  for (const char* text :
       {"<quillstead-shortcut>", "<quillstead-shortcut>x</quillstead-shortcut> \\n"}) {
    const MetaValue value("\"" + std::string(text) + "\"");
    EXPECT_EQ(validFenced(value.get(), tag), *value.get().string());
  }
}

TEST(MemoryLane, RefusesATextThatDoesNotBeginWithItsTag) {
  for (const char* value :
       {"absent", "null", "5", "true", "[\"<quillstead-shortcut>\"]", R"("")", R"("  ")",
        R"(" <quillstead-shortcut>x")", R"("\n<quillstead-shortcut>x")",
        R"("<quillstead-shortcut")", R"("<Quillstead-shortcut>x")", R"("<quillstead-now>x")",
        R"("x<quillstead-shortcut>")", R"("\ufeff<quillstead-shortcut>")"}) {
    EXPECT_EQ(validFenced(MetaValue(value).get(), tag), std::nullopt) << value;
  }
  EXPECT_EQ(validFenced(JSON::View(std::string_view("  ")), "  "), std::nullopt)
      << "blank, whatever the tag";
}

TEST(MemoryLane, TakesAReasonOfUpTo32LettersDigitsAndHyphens) {
  for (const std::string& reason : {std::string("no-match"), std::string("A"), std::string("-"),
                                    std::string("azAZ09-"), std::string(32, 'x')}) {
    EXPECT_EQ(validMiss(MetaValue("\"" + reason + "\"").get()), reason);
  }
}

TEST(MemoryLane, RefusesAnyOtherReason) {
  for (const std::string& value : {std::string("absent"),
                                   std::string("null"),
                                   std::string("7"),
                                   std::string(R"([])"),
                                   std::string(R"("")"),
                                   "\"" + std::string(33, 'x') + "\"",
                                   std::string(R"("no_match")"),
                                   std::string(R"("no match")"),
                                   std::string(R"(" no")"),
                                   std::string(R"("no\n")"),
                                   std::string(R"("n\u00e9ant")"),
                                   std::string(R"("\uff41")"),
                                   std::string(R"("a.b")"),
                                   std::string(R"("a/b")"),
                                   std::string(R"("a:b")"),
                                   std::string(R"("a@b")"),
                                   std::string(R"("a[b")"),
                                   std::string(R"("a`b")"),
                                   std::string(R"("a{b")"),
                                   std::string(R"("a\u0000")")}) {
    EXPECT_EQ(validMiss(MetaValue(value).get()), std::nullopt) << value;
  }
}

TEST(MemoryLane, TakesACountOf1To999) {
  for (const int count : {1, 2, 500, 999}) {
    EXPECT_EQ(validCount(MetaValue(std::to_string(count)).get()), count);
  }
  for (const char* value : {"absent", "null", "true", "false", "0", "-1", "1000", "2.0", "2e0",
                            "1e2", R"("5")", "[5]", "{}", "4294967297", "18446744073709551617"}) {
    EXPECT_EQ(validCount(MetaValue(value).get()), std::nullopt) << value;
  }
}

TEST(MemoryLane, TakesAsManySpansAsThereAreCards) {
  EXPECT_EQ(validSpans(MetaValue("[10,20,30]").get(), 3), (Spans{10, 20, 30}));
  EXPECT_EQ(validSpans(MetaValue("[1]").get(), 1), Spans{1});
  EXPECT_EQ(validSpans(MetaValue("[9223372036854775807]").get(), 1), Spans{INT64_MAX});
  EXPECT_EQ(validSpans(MetaValue("[]").get(), 0), Spans{});
}

TEST(MemoryLane, RefusesSpansOfAnotherLengthOrWithAnUnsoundElement) {
  for (const char* value :
       {"absent", "null", "3", R"("[10,20,30]")", R"({"0":10})", "[]", "[10,20]", "[10,20,30,40]",
        "[10,0,5]", "[10,-1,5]", "[10,2.0,5]", "[10,true,5]", "[10,null,5]", R"([10,"20",5])",
        "[10,[20],5]", "[10,9223372036854775808,5]", "[1e1,20,5]"}) {
    EXPECT_EQ(validSpans(MetaValue(value).get(), 3), std::nullopt) << value;
  }
  EXPECT_EQ(validSpans(MetaValue("[1]").get(), 0), std::nullopt);
  EXPECT_EQ(validSpans(MetaValue("[]").get(), -1), std::nullopt);
}

// --- The whole lane

TEST(MemoryLane, BringsCardsWithTheirCountAndSpans) {
  const LaneOutcome outcome = ran(R"({"quillstead/replyKind":"cards","quillstead/cardCount":3,
                                      "quillstead/cardSpans":[10,20,30]})",
                                  " cards as they are \n");
  EXPECT_EQ(outcome.block, " cards as they are \n");
  EXPECT_EQ(outcome.fields, Fields{"cards=3"});
  EXPECT_EQ(outcome.cardCount, 3);
  EXPECT_EQ(outcome.cardSpans, (Spans{10, 20, 30}));
  EXPECT_EQ(outcome.shortcut, std::nullopt);
  EXPECT_EQ(outcome.justEnded, std::nullopt);
  EXPECT_EQ(outcome.indexSpan, std::nullopt);
  EXPECT_FALSE(outcome.declineFast);
}

TEST(MemoryLane, KeepsAShortcutWithoutCards) {
  const LaneOutcome outcome = ran(R"({"quillstead/replyKind":"empty",
      "quillstead/shortcut":"<quillstead-shortcut>\nx\n</quillstead-shortcut>"})");
  expectNoCards(outcome);
  EXPECT_EQ(outcome.shortcut, "<quillstead-shortcut>\nx\n</quillstead-shortcut>");
  EXPECT_EQ(outcome.fields, (Fields{"shortcut=1", "cards=0"}));
}

TEST(MemoryLane, TellsWhyThereIsNoShortcut) {
  struct Case {
    const char* meta;
    Fields fields;
  };
  for (
      const Case& one : {
          Case{
              R"("quillstead/shortcut":" <quillstead-shortcut>x","quillstead/shortcutMiss":"stale")",
              {"shortcut=MISS:stale", "cards=0"}},
          Case{R"("quillstead/shortcutMiss":"no-match")", {"shortcut=MISS:no-match", "cards=0"}},
          Case{
              R"("quillstead/shortcut":"<quillstead-shortcut>x","quillstead/shortcutMiss":"stale")",
              {"shortcut=1", "cards=0"}},
          Case{R"("quillstead/shortcutMiss":"not_good")", {"cards=0"}},
          Case{R"("quillstead/shortcutMiss":"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx")", {"cards=0"}},
          Case{R"("quillstead/shortcut":5)", {"cards=0"}},
      }) {
    const LaneOutcome outcome =
        ran(std::string(R"({"quillstead/replyKind":"empty",)") + one.meta + "}");
    EXPECT_EQ(outcome.fields, one.fields) << one.meta;
    EXPECT_EQ(outcome.shortcut.has_value(), one.fields.front() == "shortcut=1");
  }
}

TEST(MemoryLane, KeepsTheJustEndedNoteWhateverTheReplyKind) {
  for (const char* kind : {R"("cards")", R"("empty")", R"("other")", "null"}) {
    const LaneOutcome outcome = ran(std::string(R"({"quillstead/cardCount":1,"quillstead/now":
        "<quillstead-now>n","quillstead/replyKind":)") +
                                    kind + "}");
    EXPECT_EQ(outcome.justEnded, "<quillstead-now>n") << kind;
  }
  EXPECT_EQ(ran(R"({"quillstead/replyKind":"empty","quillstead/now":"<quillstead-shortcut>n"})")
                .justEnded,
            std::nullopt);
  EXPECT_EQ(
      ran(R"({"quillstead/replyKind":"empty","quillstead/now":" <quillstead-now>n"})").justEnded,
      std::nullopt);
}

TEST(MemoryLane, RefusesCardsOfNoKindCountOrText) {
  struct Case {
    const char* meta;
    const char* text;
  };
  for (const Case& one : {
           Case{"{}", "t"},
           Case{R"({"quillstead/cardCount":1})", "t"},
           Case{R"({"quillstead/replyKind":"cards"})", "t"},
           Case{R"({"quillstead/replyKind":"cards","quillstead/cardCount":1})", ""},
           Case{R"({"quillstead/replyKind":"Cards","quillstead/cardCount":1})", "t"},
           Case{R"({"quillstead/replyKind":"rules","quillstead/cardCount":1})", "t"},
           Case{R"({"quillstead/replyKind":["cards"],"quillstead/cardCount":1})", "t"},
           Case{R"({"quillstead/replyKind":"cards","quillstead/cardCount":true})", "t"},
           Case{R"({"quillstead/replyKind":"cards","quillstead/cardCount":0})", "t"},
           Case{R"({"quillstead/replyKind":"cards","quillstead/cardCount":1000})", "t"},
           Case{R"({"quillstead/replyKind":"cards","quillstead/cardCount":2.0})", "t"},
       }) {
    const LaneOutcome outcome = ran(one.meta, one.text);
    expectNoCards(outcome);
    EXPECT_EQ(outcome.fields, Fields{"cards=MISS:no-kind"}) << one.meta;
  }
}

TEST(MemoryLane, KeepsCardsWhoseSpansAreUnsound) {
  for (const char* spans : {"[10,20]", "[10,0,5]", "null", "[1,2,3.0]"}) {
    const LaneOutcome outcome = ran(std::string(R"({"quillstead/replyKind":"cards",
        "quillstead/cardCount":3,"quillstead/cardSpans":)") +
                                    spans + "}");
    EXPECT_EQ(outcome.block, "the cards");
    EXPECT_EQ(outcome.cardCount, 3);
    EXPECT_EQ(outcome.cardSpans, std::nullopt) << spans;
    EXPECT_EQ(outcome.fields, Fields{"cards=3"});
  }
}

TEST(MemoryLane, TakesABlankTextForCards) {
  EXPECT_EQ(ran(R"({"quillstead/replyKind":"cards","quillstead/cardCount":1})", " ").block, " ");
}

TEST(MemoryLane, GivesExactlyOneFieldAndNothingElseWhenTheCallFails) {
  const unit::Server server;
  server.answer(tool, R"({"isError":true,"content":[],"_meta":{"quillstead/replyKind":"empty",
      "quillstead/shortcut":"<quillstead-shortcut>","quillstead/now":"<quillstead-now>"}})");
  const LaneOutcome outcome = run({}, server.client(), unit::ampleDeadline());
  EXPECT_EQ(outcome.fields, Fields{"cards=MISS:no-envelope"});
  expectNoCards(outcome);
  EXPECT_EQ(outcome.shortcut, std::nullopt);
  EXPECT_EQ(outcome.justEnded, std::nullopt);
}

TEST(MemoryLane, DoesNotPassOnThatTheServerIsBroken) {
  const LaneOutcome outcome =
      run({}, {.executable = "/nothing/here", .clientName = "codex"}, unit::ampleDeadline());
  EXPECT_EQ(outcome.fields, Fields{"cards=MISS:no-envelope"});
  EXPECT_FALSE(outcome.declineFast);
}

TEST(MemoryLane, TellsATimedOutCallInExactlyOneField) {
  const Deadline deadline{.start = OS::MonotonicClock::now(), .allowance = Seconds(0.2)};
  const LaneOutcome outcome =
      run({}, {.executable = unit::child("SleepsForever"), .clientName = "codex"}, deadline);
  EXPECT_EQ(outcome.fields, Fields{"cards=MISS:timeout"});
}

TEST(MemoryLane, StartsNothingWhenTheDeadlineIsSpent) {
  const unit::Server server;
  const Deadline spent{.start = OS::MonotonicClock::now() - std::chrono::seconds(3),
                       .allowance = Seconds(2.5)};
  EXPECT_EQ(run({}, server.client(), spent).fields, Fields{"cards=MISS:timeout"});
  EXPECT_FALSE(server.wasCalled(tool));
}

TEST(MemoryLane, MayTakeAllTheTimeThatTheDeadlineLeaves) {
  const Deadline deadline{.start = OS::MonotonicClock::now(), .allowance = Seconds(2.0)};
  const Seconds taken = unit::timeOf([&] {
    run({}, {.executable = unit::child("SleepsForever"), .clientName = "codex"}, deadline);
  });
  EXPECT_GT(taken, Seconds(1.9)) << "no cap of its own";
  EXPECT_LT(taken, Seconds(30));
}

}  // namespace
}  // namespace quillstead::hook::MemoryLane
