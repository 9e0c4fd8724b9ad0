#include "server/Rules/Rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

namespace {

/// The pieces into which the borders cut `text`, without the white space between them.
std::vector<std::string> rulesIn(std::string_view text) {
  std::vector<std::string> pieces;
  std::size_t begin = 0;
  for (const std::size_t end : Rules::borders(text)) {
    begin = text.find_first_not_of(" \n", begin);
    pieces.emplace_back(text.substr(begin, end - begin));
    begin = end;
  }
  return pieces;
}

TEST(RuleBorders, LieBetweenRules) {
  using Rules = std::vector<std::string>;
  struct Case {
    std::string_view text;
    Rules rules;
  };
  for (const Case& one : {Case{"", {}},
                          {"one", {"one"}},
                          {"- a\n- b\n- c", {"- a", "- b", "- c"}},
                          {"- a\n  more\n  - inner\n- b", {"- a\n  more\n  - inner", "- b"}},
                          {"- a\n\n  paragraph of a\n\n- b", {"- a\n\n  paragraph of a", "- b"}},
                          {"- a\nlazy\n- b", {"- a\nlazy", "- b"}},
                          {"First.\nStill first.\n\nSecond.", {"First.\nStill first.", "Second."}},
                          {"# H\n\n## I\n- a\n- b", {"# H\n\n## I\n- a", "- b"}},
                          {"- a\n# H\n- b", {"- a", "# H\n- b"}},
                          {"Always:\n- a\n- b", {"Always:\n- a", "- b"}},
                          {"Always:\n\n- a", {"Always:\n\n- a"}},
                          {"```\n- x\n\n- y\n```\n- z", {"```\n- x\n\n- y\n```", "- z"}},
                          {"1. a\n2. b", {"1. a", "2. b"}}}) {
    SCOPED_TRACE(one.text);
    EXPECT_EQ(rulesIn(one.text), one.rules);
  }
}

TEST(RuleBorders, EndWithAllOfTheText) {
  for (const std::string_view text : {"a", "- a\n- b", "# only a heading", "```\nopen code\n\nx"}) {
    EXPECT_EQ(Rules::borders(text).back(), text.size()) << text;
  }
}

}  // namespace

}  // namespace quillstead::server
