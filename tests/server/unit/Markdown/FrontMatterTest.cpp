#include "server/Markdown/FrontMatter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

namespace {

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
