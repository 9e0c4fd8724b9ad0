#include "server/Markdown/Markdown.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace quillstead::server {

namespace {

TEST(Markdown, ReadsHeadings) {
  struct Case {
    std::string_view line;
    std::optional<std::string_view> text;
  };
  for (const Case& one : {Case{"# Title", "Title"},
                          {"###### Deep", "Deep"},
                          {"   ## Indented", "Indented"},
                          {"## Closed ##", "Closed"},
                          {"# C#", "C#"},
                          {"#", ""},
                          {"# ##", ""},
                          {"#\tTab", "Tab"},
                          {"####### Seven", std::nullopt},
                          {"#Tag", std::nullopt},
                          {"    # Code", std::nullopt},
                          {"Text # no", std::nullopt},
                          {"", std::nullopt}}) {
    SCOPED_TRACE(one.line);
    EXPECT_EQ(Markdown::heading(one.line), one.text);
  }
}

TEST(Markdown, KnowsItemsOfOutermostLists) {
  for (const std::string_view line : {"- a", "* a", "+ a", "-", "1. a", "12) a", "-\ta"}) {
    EXPECT_TRUE(Markdown::isListItem(line)) << line;
  }
  for (const std::string_view line : {"", "a", "-a", " - a", "1.a", "1", "**a**", ". a", "---"}) {
    EXPECT_FALSE(Markdown::isListItem(line)) << line;
  }
}

TEST(Markdown, FollowsCodeFences) {
  struct Line {
    std::string_view text;
    bool covered;
  };
  Markdown::CodeFence fence;
  for (const Line& line : {Line{"text", false},
                           {"```sh", true},
                           {"# not a heading", true},
                           {"~~~", true},
                           {"", true},
                           {"``` not the end", true},
                           {"````", true},
                           {"text", false},
                           {"```inline``` code", false},
                           {"  ~~~~", true},
                           {"~~~", true},
                           {"~~~~", true},
                           {"text", false}}) {
    SCOPED_TRACE(line.text);
    EXPECT_EQ(fence.covers(line.text), line.covered);
  }
}

TEST(Markdown, LowersHeadingsByTwoLevels) {
  struct Case {
    std::string_view text;
    std::string_view lowered;
  };
  for (const Case& one :
       {Case{"", ""},
        {"a\n", "a\n"},
        {"# A\n\n## B\nc", "### A\n\n#### B\nc"},
        {"#### D\n##### E\n###### F", "###### D\n###### E\n###### F"},
        {"  ## B #", "#### B #"},
        {"#tag\n####### g\n    # code", "#tag\n####### g\n    # code"},
        {"```\n# comment\n```\n# A", "```\n# comment\n```\n### A"},
        {"~~~\n## B\n(project: b.md)\n~~~", "~~~\n#### B\n(project: b.md)\n~~~"},
        {"```\nx\n```\n````\n# A\n```\n## B", "```\nx\n```\n````\n### A\n```\n#### B"}}) {
    EXPECT_EQ(Markdown::withLowerHeadings(one.text), one.lowered) << one.text;
  }
}

TEST(Markdown, LowersWhatLooksLikeTheHeaderOfACardWhereverItStands) {
  struct Case {
    std::string_view text;
    std::string_view lowered;
  };
  for (const Case& one :
       {Case{"~~~\n## B\n \t(personal: b.md)\n~~~", "~~~\n#### B\n \t(personal: b.md)\n~~~"},
        {"~~~\n  ## B\n\u00A0(personal: b.md)\n~~~", "~~~\n#### B\n\u00A0(personal: b.md)\n~~~"},
        {"a\n\n    ## B\n    (personal: b.md)", "a\n\n#### B\n    (personal: b.md)"},
        {"##\u00A0B\n(personal: b.md)", "#### B\n(personal: b.md)"},
        {"\u2003## B\n(personal: b.md)", "#### B\n(personal: b.md)"},
        {"\t##\u3000B \n(personal: b.md)\n## C", "#### B\n(personal: b.md)\n#### C"}}) {
    EXPECT_EQ(Markdown::withLowerHeadings(one.text), one.lowered) << one.text;
  }
  for (const std::string_view other :
       {"~~~\n## B\nb (b)\n~~~", "    ## B\n\n    (b)", "~~~\n# a\n  (b)\n~~~", "##B\n(b)",
        "##\n(b)", "    ## B", "\t##B\n(b)"}) {
    EXPECT_EQ(Markdown::withLowerHeadings(other), other == "##\n(b)" ? "####\n(b)" : other);
  }
}

TEST(Markdown, LowersUnderlinedHeadingsToo) {
  struct Case {
    std::string_view text;
    std::string_view lowered;
  };
  for (const Case& one :
       {Case{"A\n===\n\nB\n---\nc", "### A\n\n#### B\nc"},
        {"A\n=\n", "### A\n"},
        {"A\n-", "#### A"},
        {"  \u00E9\n   ----- \t\n(project: b.md)", "#### \u00E9\n(project: b.md)"},
        {"# A\n---\nb", "### A\n---\nb"},
        {"a\n\n---\nb\n\n===\n", "a\n\n---\nb\n\n===\n"},
        {"a\nb\n---\nc\n---", "a\nb\n\n---\n#### c"},
        {"- a\n---\n> b\n---\n1. c\n===\n    d\n---\n\te\n---",
         "- a\n---\n> b\n---\n1. c\n===\n    d\n---\n\te\n---"},
        {"a\n--- -\nb\n== =\nc\n    ---", "a\n--- -\nb\n== =\nc\n    ---"},
        {"***\n---\n___\n---", "***\n---\n___\n---"},
        {"---\n---\n===", "---\n---\n==="},
        {"```\nkey\n---\nb\n```\nB\n---", "```\nkey\n---\nb\n```\n#### B"},
        {"```\nB\n---\n(project: b.md)\n```", "```\n#### B\n(project: b.md)\n```"},
        {"```\nB\n---\nopen", "```\n#### B\nopen"}}) {
    EXPECT_EQ(Markdown::withLowerHeadings(one.text), one.lowered) << one.text;
  }
}

struct Case {
  std::string_view text;
  std::string_view left;
};

TEST(Comments, GoWithTheLinesThatHoldNothingElse) {
  for (const Case& one : {Case{"<!-- a -->", ""},
                          {"<!-- a -->\n", ""},
                          {"- a\n<!-- b -->\n- c\n", "- a\n- c\n"},
                          {"- a\r\n<!-- b -->\r\n- c\r\n", "- a\r\n- c\r\n"},
                          {"- a\n  <!-- b --> \t\n  c\n", "- a\n  c\n"},
                          {"<!--\n- a\n\n- b\n-->\n- c\n", "- c\n"},
                          {"a\n<!-- b --><!-- c -->\nd", "a\nd"},
                          {"a <!-- b -->c", "a c"},
                          {"<!-- a --> b\n", " b\n"},
                          {"a<!-- b\nc -->\nd", "a\nd"},
                          {"<!-->a<!--->b", "ab"},
                          {"a -- b --> c <! d", "a -- b --> c <! d"},
                          {"", ""}}) {
    SCOPED_TRACE(one.text);
    EXPECT_EQ(Markdown::withoutComments(one.text), one.left);
  }
}

TEST(Comments, StayInCode) {
  for (const std::string_view text :
       {"```html\n<!-- a -->\n```\n", "~~~\n<!--\n~~~\nb\n", "Write `<!-- a -->` here.",
        "Write `` ` <!-- a --> `` here.", "Write `<!--\n-->` here.", "    <!-- a -->\n",
        "a\n\n\t<!-- b -->\n\n    <!-- c -->\n"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(Markdown::withoutComments(text), text);
  }
}

TEST(Comments, AreNoCodeBehindWhatOnlyLooksLikeIt) {
  for (const Case& one : {Case{"it's a ` <!-- a -->b", "it's a ` b"},
                          {"a `\n\n<!-- ` -->b", "a `\n\nb"},
                          {"```\na\n```\n<!-- b -->\nc", "```\na\n```\nc"},
                          {"- a\n\n    <!-- b -->\n    c\n", "- a\n\n    c\n"},
                          {"a\n    <!-- b -->\n", "a\n"},
                          {"<!-- ``` -->\n<!-- a -->\nb", "b"}}) {
    SCOPED_TRACE(one.text);
    EXPECT_EQ(Markdown::withoutComments(one.text), one.left);
  }
}

TEST(Comments, WithoutAnEndHideTheRestOnlyAtTheBeginningOfALine) {
  EXPECT_EQ(Markdown::withoutComments("a\n<!-- b\nc\n"), "a\n");
  EXPECT_EQ(Markdown::withoutComments("a\n  <!-- b\n\nc\n"), "a\n");
  EXPECT_EQ(Markdown::withoutComments("the sign <!-- begins one\nc\n"),
            "the sign <!-- begins one\nc\n");
}

TEST(Comments, TakeNoLongerForWhatIsMadeToTakeLong) {
  for (const std::string_view piece :
       {"a<!-- ", "`a` ", "a ` `` ", "<!-- -->", "`<!--` ", "- \n"}) {
    SCOPED_TRACE(piece);
    std::string text = "a";
    while (text.size() < 1'000'000) text += piece;
    const auto begin = std::chrono::steady_clock::now();
    Markdown::withoutComments(text);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
  }
}

}  // namespace

}  // namespace quillstead::server
