#include "server/Markdown/Comments.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <string_view>

namespace quillstead::server {

namespace {

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
