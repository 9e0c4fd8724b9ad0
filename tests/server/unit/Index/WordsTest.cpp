#include "server/Index/Words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead {

namespace {

TEST(Words, AreThoseThatTellCardsApart) {
  using List = std::vector<std::string>;
  struct Case {
    std::string_view text;
    List words;
  };
  for (const Case& one : {Case{"How do we deploy to Staging?", {"deploy", "staging"}},
                          {"the and of to please can you", {}},
                          {"don't we'll I'm it's", {}},
                          {"deploy DEPLOY Deploy", {"deploy"}},
                          {"a b c 1 2 x9", {"x9"}},
                          {"memory_get_relevant", {"memory", "relevant"}},
                          {"GRÖSSE naïve", {"grösse", "naïve"}},
                          {"\"quoted\" AND (x:y) NEAR*", {"quoted", "near"}},
                          {"数据库备份", {"数 据", "据 库", "库 备", "备 份"}},
                          {"猫 is 犬猫", {"猫", "犬 猫"}},
                          {"東京tower2", {"東 京", "tower2"}},
                          {"bad\xFF"
                           "bytes",
                           {"bad", "bytes"}},
                          {"", {}}}) {
    SCOPED_TRACE(one.text);
    EXPECT_EQ(Words::telling(one.text), one.words);
  }
}

TEST(Words, StandApartInScriptsWithoutBlanks) {
  EXPECT_EQ(Words::spaced("ab 東京 é"), "ab  東  京  é");
  EXPECT_EQ(Words::spaced("plain"), "plain");
  EXPECT_EQ(Words::spaced(""), "");
}

}  // namespace

}  // namespace quillstead
