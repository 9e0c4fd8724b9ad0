#include "server/Store/CardName.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quillstead {

namespace {

TEST(CardName, IsMadeOfTheTitlesLettersAndDigits) {
  struct Case {
    std::string_view title;
    std::string_view name;
  };
  for (const Case& one : {Case{"Deploying to Staging", "deploying-to-staging.md"},
                          {"  --a/b\\c:d..  ", "a-b-c-d.md"},
                          {"../../etc/passwd", "etc-passwd.md"},
                          {"Größe ÄÖÜ", "größe-äöü.md"},
                          {"数据库 备份", "数据库-备份.md"},
                          {"...", "card.md"},
                          {"", "card.md"},
                          {"\xFF\xFE", "card.md"},
                          {"👩‍👩‍👧 family", "family.md"}}) {
    SCOPED_TRACE(one.title);
    EXPECT_EQ(CardName::fromTitle(one.title, 1), one.name);
  }
  EXPECT_EQ(CardName::fromTitle("T", 2), "t-2.md");
}

TEST(CardName, IsCutBetweenCharacters) {
  const std::string name = CardName::fromTitle(std::string(59, 'a') + "é", 1);
  EXPECT_EQ(name, std::string(59, 'a') + ".md");
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

}  // namespace quillstead
