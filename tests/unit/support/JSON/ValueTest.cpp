#include "support/JSON/Reader.h"
#include "support/JSON/Value.h"
#include "support/JSON/Writer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillstead::JSON {
namespace {

std::vector<std::string> keysOf(const Object& object) {
  std::vector<std::string> keys;
  for (const Member& member : object.members()) keys.push_back(member.key);
  return keys;
}

std::int64_t integerAt(const Object& object, std::string_view key) {
  const Value* const value = object.find(key);
  return value && value->number() ? value->number()->integer().value_or(-1) : -1;
}

TEST(Value, IsOfExactlyOneKind) {
  const Value values[]{
      nullptr, true, 5, "text", Array{1}, objectOf({{"a", 1}}), View(true), JoinedString{"a", "b"}};
  for (std::size_t i = 0; i < std::size(values); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(values[i].isNull(), i == 0);
    EXPECT_EQ(values[i].boolean() != nullptr, i == 1);
    EXPECT_EQ(values[i].number().has_value(), i == 2);
    EXPECT_EQ(values[i].string() != nullptr, i == 3);
    EXPECT_EQ(values[i].array() != nullptr, i == 4);
    EXPECT_EQ(values[i].object() != nullptr, i == 5);
    EXPECT_EQ(values[i].part() != nullptr, i == 6);
    EXPECT_EQ(values[i].joinedString() != nullptr, i == 7);
  }
  EXPECT_TRUE(Value().isNull());
}

TEST(Value, HoldsNumbersByTheirText) {
  EXPECT_EQ(Value(std::int64_t{-42}).number()->text(), "-42");
  EXPECT_EQ(Value(INT64_MIN).number()->text(), "-9223372036854775808");
  EXPECT_EQ(Value::number("1.50E+01").number()->text(), "1.50E+01");
}

TEST(Value, CopiesAPartOfADocumentThatThenMayGo) {
  const std::string text = R"({"a":[1,2.50,"x\n",[],{}],"b":{"c":null,"d":true,"e":false}})";
  Value copy;
  {
    const std::optional<Document> document = read(text);
    ASSERT_TRUE(document);
    copy = Value::copyOf(document->root());
  }
  EXPECT_EQ(write(copy, Slashes::plain), text);
  EXPECT_EQ(copy.part(), nullptr);
  ASSERT_TRUE(copy.object());
  EXPECT_EQ(copy.object()->find("a")->array()->size(), 5U);
  EXPECT_TRUE(Value::copyOf(View()).isNull());
}

TEST(Object, FindsMembersByTheWholeKey) {
  const Object object = objectOf({{"a", 1}, {"ab", 2}, {"", 3}});
  EXPECT_EQ(integerAt(object, "a"), 1);
  EXPECT_EQ(integerAt(object, "ab"), 2);
  EXPECT_EQ(integerAt(object, ""), 3);
  EXPECT_EQ(object.find("b"), nullptr);
  EXPECT_EQ(object.find("A"), nullptr);
  EXPECT_EQ(object.find(std::string_view("a\0", 2)), nullptr);
  EXPECT_EQ(Object().find("a"), nullptr);
}

TEST(Object, TellsWhetherItIsEmpty) {
  EXPECT_TRUE(Object().empty());
  EXPECT_EQ(Object().size(), 0U);
  EXPECT_FALSE(objectOf({{"a", 1}}).empty());
}

TEST(Object, SetsAMemberWhereItStandsOrAtTheEnd) {
  Object object = objectOf({{"a", 1}, {"b", 2}, {"c", 3}});
  object.set("b", 20);
  object.set("d", 4);
  EXPECT_EQ(keysOf(object), (std::vector<std::string>{"a", "b", "c", "d"}));
  EXPECT_EQ(integerAt(object, "b"), 20);
  EXPECT_EQ(integerAt(object, "d"), 4);
}

TEST(Object, TakesOverTheMembersOfOneThatWasRead) {
  const std::optional<Document> document = read(R"({"z":{"deep":[1]},"a":"text","n":5})");
  ASSERT_TRUE(document);
  Object object(document->object());
  object.set("a", "changed");
  object.set("new", true);
  EXPECT_EQ(write(object, Slashes::plain), R"({"z":{"deep":[1]},"a":"changed","n":5,"new":true})");
}

}  // namespace
}  // namespace quillstead::JSON
