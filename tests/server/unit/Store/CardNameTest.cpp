#include "server/Store/CardName.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

namespace quillstead::server {

namespace {

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

}  // namespace

}  // namespace quillstead::server
