#include "server/Store/Card.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

namespace {

TEST(Card, TakesItsTitleFromTheFirstHeading) {
  struct Case {
    std::string_view text;
    std::string_view title;
    std::string_view body;
  };
  for (const Case& one : {Case{"# T\n\nbody\n", "T", "body"},
                          {"before\n## Later\nafter", "Later", "before\n## Later\nafter"},
                          {"```\n# code\n```\n# Real\n", "Real", "```\n# code\n```\n# Real"},
                          {"#\n# Second\nb", "Second", "#\n# Second\nb"},
                          {"# \x01\x02\n# Second", "Second", "# \x01\x02\n# Second"},
                          {"no heading", "file", "no heading"},
                          {"", "file", ""},
                          {"---\ntags: a\n---\n# T\r\n\r\none\r\ntwo\r\n", "T", "one\ntwo"},
                          {"# Ein   Ölfleck\t\n", "Ein Ölfleck", ""}}) {
    SCOPED_TRACE(one.text);
    const Card card = Card::parse(one.text, "file.md");
    EXPECT_EQ(card.title, one.title);
    EXPECT_EQ(card.body, one.body);
  }
}

TEST(Card, HasATitleWhateverItsFileIsCalled) {
  EXPECT_EQ(Card::parse("no heading", "a  b.md").title, "a b");
  EXPECT_EQ(Card::parse("no heading", " .md").title, " .md");
  EXPECT_EQ(Card::parse("no heading", "a\xFF.md").title, "a\uFFFD");
}

TEST(Card, ReadsItsTags) {
  EXPECT_THAT(Card::parse("---\ntags: [x, y]\n---\n# T\n", "f.md").tags,
              ::testing::ElementsAre("x", "y"));
}

TEST(CardName, IsMadeOfTheTitlesLettersAndDigits) {
  struct Case {
    std::string_view title;
    std::string_view name;
  };
  for (const Case& one : {Case{"Deploying to Staging", "deploying-to-staging-m.md"},
                          {"  --a/b\\c:d..  ", "a-b-c-d-m.md"},
                          {"../../etc/passwd", "etc-passwd-m.md"},
                          {"Größe ÄÖÜ", "größe-äöü-m.md"},
                          {"数据库 备份", "数据库-备份-m.md"},
                          {"...", "card-m.md"},
                          {"", "card-m.md"},
                          {"\xFF\xFE", "card-m.md"},
                          {"👩‍👩‍👧 family", "family-m.md"}}) {
    SCOPED_TRACE(one.title);
    EXPECT_EQ(CardName::fromTitle(one.title, "m"), one.name);
  }
}

TEST(CardName, IsCutBetweenCharacters) {
  const std::string name = CardName::fromTitle(std::string(59, 'a') + "é", "m");
  EXPECT_EQ(name, std::string(59, 'a') + "-m.md");
}

TEST(CardName, IsMarkedDifferentlyEachTime) {
  std::set<std::string> marks;
  for (int count = 0; count < 1'000; ++count) marks.insert(CardName::randomMark());
  EXPECT_GE(marks.size(), 999U);
  EXPECT_THAT(marks, ::testing::Each(::testing::MatchesRegex("[0-9a-z]{6}")));
}

TEST(CardName, HasFlawsThatAreTold) {
  struct Case {
    std::string_view name;
    CardName::Flaw flaw;
  };
  using CardName::Flaw;
  for (const Case& one : {Case{"a.md", Flaw::none},
                          {"..a.md", Flaw::none},
                          {"/etc/passwd", Flaw::absolute},
                          {"~/x", Flaw::absolute},
                          {"..", Flaw::leavesStore},
                          {"../x", Flaw::leavesStore},
                          {"a/../b", Flaw::leavesStore},
                          {"a/..", Flaw::leavesStore},
                          {"a/b", Flaw::inSubdirectory},
                          {"", Flaw::unusable},
                          {".", Flaw::unusable},
                          {std::string_view("a\0b", 3), Flaw::unusable}}) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(CardName::flawOf(one.name), one.flaw);
  }
  EXPECT_EQ(CardName::flawOf(std::string(256, 'a')), Flaw::unusable);
}

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(FrontMatter, ReadsTagsInEveryWayOfWritingThem) {
  for (const std::string_view text :
       {"---\ntags: [a, b c]\n---\n", "---\ntags: a, b c\n---\n", "---\ntags:\n- a\n- b c\n---\n",
        "---\ntags:\n  - a\n  - \"b c\"\n---\n", "---\r\ntags: ['a', \"b c\"]\r\n---\r\n"}) {
    SCOPED_TRACE(text);
    const FrontMatter matter = FrontMatter::parse(text);
    EXPECT_THAT(matter.values("tags"), ElementsAre("a", "b c"));
    EXPECT_EQ(matter.rest, "");
  }
}

TEST(FrontMatter, KeepsTheTextBelow) {
  const FrontMatter matter = FrontMatter::parse("---\ncreated: 2026-11-21T08:00:00Z\n---\n\n# T\n");
  EXPECT_THAT(matter.values("created"), ElementsAre("2026-11-21T08:00:00Z"));
  EXPECT_THAT(matter.values("tags"), IsEmpty());
  EXPECT_EQ(matter.rest, "\n# T\n");
}

TEST(FrontMatter, IsAbsentWhenItDoesNotOpenOrClose) {
  for (const std::string_view text :
       {"", "# T\n", "---\ntags: a\n# T\n", "text\n---\na: b\n---\n"}) {
    SCOPED_TRACE(text);
    const FrontMatter matter = FrontMatter::parse(text);
    EXPECT_TRUE(matter.fields.empty());
    EXPECT_EQ(matter.rest, text);
  }
}

TEST(FrontMatter, SurvivesOddLines) {
  const FrontMatter matter =
      FrontMatter::parse("---\n- stray\n# comment: no\n:\nno colon\nt: \"open\nu: [x\n---\nrest");
  EXPECT_EQ(matter.rest, "rest");
  EXPECT_THAT(matter.values("t"), ElementsAre("\"open"));
  EXPECT_THAT(matter.values("u"), ElementsAre("[x"));
}

TEST(FrontMatter, ReadsBackWhatItWrites) {
  for (const std::string_view value :
       {"plain", "two words", "a: b", "[list]", "line\nbreak", "quote\"quote", "it's", " spaced ",
        "back\\slash", "---", "comma, comma", "übung", "#tag", "{}", "-", "tab\t"}) {
    SCOPED_TRACE(value);
    const std::string text = "---\nsession: " + FrontMatter::written(value) + "\ntags: [" +
                             FrontMatter::written(value) + ", last]\n---\n";
    const FrontMatter matter = FrontMatter::parse(text);
    EXPECT_THAT(matter.values("session"), ElementsAre(std::string(value)));
    EXPECT_THAT(matter.values("tags"), ElementsAre(std::string(value), "last"));
  }
}

}  // namespace

}  // namespace quillstead::server
