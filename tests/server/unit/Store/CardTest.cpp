#include "server/Store/Card.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

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

}  // namespace

}  // namespace quillstead::server
