#include "server/Markdown/Markdown.h"

#include <gtest/gtest.h>

#include <optional>
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

}  // namespace

}  // namespace quillstead::server
