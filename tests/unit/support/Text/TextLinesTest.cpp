#include "support/Text/Text.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace quillstead::Text {
namespace {

TEST(Lines, AreTakenOneByOne) {
  using Lines = std::vector<std::string_view>;
  struct Case {
    std::string_view text;
    Lines lines;
  };
  for (const Case& one : {Case{"", {}},
                          {"a", {"a"}},
                          {"a\n", {"a"}},
                          {"\n\na\r\n b ", {"", "", "a", " b "}},
                          {"a\rb\r", {"a\rb"}}}) {
    Lines lines;
    for (std::string_view rest = one.text; !rest.empty();) lines.push_back(takeLine(rest));
    EXPECT_EQ(lines, one.lines) << one.text;
  }
}

TEST(Lines, EndInLineFeeds) {
  EXPECT_EQ(withLineFeeds("a\r\nb\n\r\n"), "a\nb\n\n");
  EXPECT_EQ(withLineFeeds("a\rb\r"), "a\rb\r");
  EXPECT_EQ(withLineFeeds(""), "");
}

TEST(Lines, BecomeOne) {
  EXPECT_EQ(onOneLine("  a \n\t b\x01"
                      "c\u2028d "),
            "a b c d");
  EXPECT_EQ(onOneLine("\n"), "");
  EXPECT_EQ(onOneLine("a\xFF"
                      "b"),
            "a\uFFFD"
            "b");
}

}  // namespace
}  // namespace quillstead::Text
