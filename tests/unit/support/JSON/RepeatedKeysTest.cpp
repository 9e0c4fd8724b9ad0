#include "support/JSON/RepeatedKeys.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillstead::JSON {
namespace {

/// "key=value" for each member that is left.
std::vector<std::string> left(std::vector<MemberView> members) {
  const std::size_t count = dropRepeatedKeys(members);
  std::vector<std::string> all;
  for (const MemberView& member : std::span(members).first(count)) {
    all.push_back(std::string(member.key) + "=" + std::string(member.value.string().value_or("?")));
  }
  return all;
}

MemberView member(std::string_view key, std::string_view value) { return {key, View(value)}; }

TEST(RepeatedKeys, PutTheirLastValueInThePlaceOfTheFirst) {
  EXPECT_EQ(left({member("a", "1"), member("b", "2"), member("a", "3"), member("c", "4"),
                  member("b", "5"), member("a", "6")}),
            (std::vector<std::string>{"a=6", "b=5", "c=4"}));
}

TEST(RepeatedKeys, AreToldApartByTheWholeKey) {
  EXPECT_EQ(left({member("a", "1"), member("ab", "2"), member("", "3"), member("A", "4")}),
            (std::vector<std::string>{"a=1", "ab=2", "=3", "A=4"}));
  EXPECT_EQ(left({member("", "1"), member("", "2")}), std::vector<std::string>{"=2"});
}

TEST(RepeatedKeys, LeaveAnEmptyObjectEmpty) { EXPECT_TRUE(left({}).empty()); }

TEST(RepeatedKeys, AreTreatedTheSameAtEverySize) {
  for (std::size_t size = 1; size <= 60; ++size) {
    std::vector<std::string> keys;
    for (std::size_t i = 0; i < size; ++i) keys.push_back("k" + std::to_string(i * 7919 % 1000));
    for (const std::size_t repeated : {std::size_t{0}, size / 2, size - 1}) {
      SCOPED_TRACE(size);
      std::vector<MemberView> members;
      std::vector<std::string> expected;
      for (std::size_t i = 0; i < size; ++i) {
        members.push_back(member(keys[i], "old"));
        expected.push_back(keys[i] + (i == repeated ? "=new" : "=old"));
      }
      EXPECT_EQ(left(members).size(), size);
      members.push_back(member(keys[repeated], "new"));
      EXPECT_EQ(left(members), expected);
    }
  }
}

}  // namespace
}  // namespace quillstead::JSON
