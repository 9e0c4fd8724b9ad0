#include "support/JSON/Value.h"

#include <gtest/gtest.h>

#include <cmath>

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

TEST(Number, IsAnIntegerExactlyWhenItHasNeitherFractionNorExponent) {
  struct Case {
    const char* text;
    std::optional<std::int64_t> integer;
  };
  for (const Case& one :
       {Case{"0", 0}, Case{"-0", 0}, Case{"7", 7}, Case{"-12", -12},
        Case{"9223372036854775807", INT64_MAX}, Case{"-9223372036854775808", INT64_MIN},
        Case{"9223372036854775808", std::nullopt}, Case{"-9223372036854775809", std::nullopt},
        Case{"123456789012345678901234567890", std::nullopt}, Case{"3.0", std::nullopt},
        Case{"3e0", std::nullopt}, Case{"3E2", std::nullopt}, Case{"0.0", std::nullopt}}) {
    EXPECT_EQ(Number::fromText(one.text).integer(), one.integer) << one.text;
  }
}

TEST(Number, ApproximatesByTheNearestDouble) {
  EXPECT_EQ(Number::fromText("0.1").approximation(), 0.1);
  EXPECT_EQ(Number::fromText("-2.5e3").approximation(), -2500.0);
  EXPECT_EQ(Number::fromText("123456789012345678901234567890").approximation(),
            1.2345678901234568e29);
  EXPECT_EQ(Number::fromText("1e-400").approximation(), 0.0);
  EXPECT_TRUE(std::isinf(Number::fromText("1e400").approximation()));
  EXPECT_LT(Number::fromText("-1e400").approximation(), 0);
}

TEST(Number, KeepsTheTextItWasMadeFrom) {
  EXPECT_EQ(Number::fromText("1.50E+01").text(), "1.50E+01");
  EXPECT_EQ(Number(std::int64_t{-42}).text(), "-42");
}

TEST(Value, IsOfExactlyOneKind) {
  const Value values[]{nullptr, true, 5, "text", Array{1}, objectOf({{"a", 1}})};
  for (std::size_t i = 0; i < std::size(values); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(values[i].isNull(), i == 0);
    EXPECT_EQ(values[i].boolean() != nullptr, i == 1);
    EXPECT_EQ(values[i].number() != nullptr, i == 2);
    EXPECT_EQ(values[i].text() != nullptr, i == 3);
    EXPECT_EQ(values[i].array() != nullptr, i == 4);
    EXPECT_EQ(values[i].object() != nullptr, i == 5);
  }
  EXPECT_TRUE(Value().isNull());
}

TEST(Value, LooksIntoWhatMayBeAbsent) {
  const Value text = "a";
  const Value array = Array{1, 2};
  const Value object = objectOf({{"k", 1}});
  EXPECT_EQ(*textOf(&text), "a");
  EXPECT_EQ(textOf(&array), nullptr);
  EXPECT_EQ(textOf(nullptr), nullptr);
  EXPECT_EQ(arrayOf(&array)->size(), 2U);
  EXPECT_EQ(arrayOf(&object), nullptr);
  EXPECT_EQ(arrayOf(nullptr), nullptr);
  EXPECT_EQ(objectOf(&object)->size(), 1U);
  EXPECT_EQ(objectOf(&text), nullptr);
  EXPECT_EQ(objectOf(static_cast<const Value*>(nullptr)), nullptr);
  EXPECT_TRUE(isText(&text, "a"));
  EXPECT_FALSE(isText(&text, "ab"));
  EXPECT_FALSE(isText(&array, "a"));
  EXPECT_FALSE(isText(nullptr, ""));
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

TEST(Object, PutsTheLastValueOfARepeatedKeyInThePlaceOfTheFirst) {
  std::vector<Member> members;
  for (const auto& [key, value] :
       {std::pair{"a", 1}, {"b", 2}, {"a", 3}, {"c", 4}, {"b", 5}, {"a", 6}}) {
    members.push_back({key, value});
  }
  const Object object(std::move(members));
  EXPECT_EQ(keysOf(object), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(integerAt(object, "a"), 6);
  EXPECT_EQ(integerAt(object, "b"), 5);
  EXPECT_EQ(integerAt(object, "c"), 4);
}

TEST(Object, TreatsRepeatedKeysTheSameAtEverySize) {
  for (int size = 1; size <= 60; ++size) {
    for (const int repeated : {0, size / 2, size - 1}) {
      SCOPED_TRACE(size);
      std::vector<Member> members;
      std::vector<std::string> keys;
      for (int i = 0; i < size; ++i) {
        keys.push_back("k" + std::to_string(i));
        members.push_back({keys.back(), i});
      }
      members.push_back({"k" + std::to_string(repeated), 1000});
      const Object object(std::move(members));
      EXPECT_EQ(keysOf(object), keys);
      for (int i = 0; i < size; ++i) {
        EXPECT_EQ(integerAt(object, "k" + std::to_string(i)), i == repeated ? 1000 : i);
      }
    }
  }
}

TEST(Object, KeepsTheOrderOfManyDistinctKeys) {
  std::vector<Member> members;
  std::vector<std::string> keys;
  for (int i = 100; i > 0; --i) {
    keys.push_back(std::to_string(i * 7919 % 1000));
    members.push_back({keys.back(), i});
  }
  EXPECT_EQ(keysOf(Object(std::move(members))), keys);
}

TEST(Object, SetsAMemberWhereItStandsOrAtTheEnd) {
  Object object = objectOf({{"a", 1}, {"b", 2}, {"c", 3}});
  object.set("b", 20);
  object.set("d", 4);
  EXPECT_EQ(keysOf(object), (std::vector<std::string>{"a", "b", "c", "d"}));
  EXPECT_EQ(integerAt(object, "b"), 20);
  EXPECT_EQ(integerAt(object, "d"), 4);
}

TEST(Object, LetsAFoundMemberBeChanged) {
  Object object = objectOf({{"a", "old"}});
  *object.find("a")->text() += " and new";
  EXPECT_TRUE(isText(object.find("a"), "old and new"));
}

}  // namespace
}  // namespace quillstead::JSON
