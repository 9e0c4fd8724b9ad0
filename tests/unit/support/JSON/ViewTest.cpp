#include "support/JSON/View.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace quillstead::JSON {
namespace {

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
    EXPECT_EQ(Number(one.text).integer(), one.integer) << one.text;
  }
}

TEST(Number, ApproximatesByTheNearestDouble) {
  EXPECT_EQ(Number("0.1").toDouble(), 0.1);
  EXPECT_EQ(Number("-2.5e3").toDouble(), -2500.0);
  EXPECT_EQ(Number("123456789012345678901234567890").toDouble(), 1.2345678901234568e29);
  EXPECT_EQ(Number("1e-400").toDouble(), 0.0);
  EXPECT_TRUE(std::isinf(Number("1e400").toDouble()));
  EXPECT_LT(Number("-1e400").toDouble(), 0);
}

TEST(Number, KeepsTheTextItWasMadeFrom) { EXPECT_EQ(Number("1.50E+01").text(), "1.50E+01"); }

TEST(View, IsOfExactlyOneKindOrAbsent) {
  const std::array elements{View(true)};
  const std::array members{MemberView{"key", View(false)}};
  const View views[]{View(),
                     View(nullptr),
                     View(true),
                     View(Number("5")),
                     View(std::string_view("text")),
                     View(ArrayView(elements)),
                     View(ObjectView(members))};
  for (std::size_t i = 0; i < std::size(views); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(views[i].exists(), i != 0);
    EXPECT_EQ(views[i].isNull(), i == 1);
    EXPECT_EQ(views[i].boolean().has_value(), i == 2);
    EXPECT_EQ(views[i].number().has_value(), i == 3);
    EXPECT_EQ(views[i].string().has_value(), i == 4);
    EXPECT_EQ(views[i].array().has_value(), i == 5);
    EXPECT_EQ(views[i].object().has_value(), i == 6);
  }
}

TEST(View, GivesWhatItWasMadeOf) {
  EXPECT_EQ(View(true).boolean(), true);
  EXPECT_EQ(View(false).boolean(), false);
  EXPECT_EQ(View(Number("-1.0")).number()->text(), "-1.0");
  EXPECT_EQ(View(std::string_view("te\0xt", 5)).string(), std::string_view("te\0xt", 5));
  EXPECT_EQ(View(std::string_view()).string(), "") << "an empty text is there";
  EXPECT_TRUE(View(ArrayView()).array()->empty());
  EXPECT_TRUE(View(ObjectView()).object()->empty());

  const std::array elements{View(std::string_view("a")), View(std::string_view("b"))};
  EXPECT_EQ(View(ArrayView(elements)).array()->size(), 2U);
  EXPECT_EQ(View(ArrayView(elements)).array()->back().string(), "b");
}

TEST(View, HasElementsOnlyWhenItIsAnArray) {
  const std::array elements{View(true), View(false)};
  EXPECT_EQ(View(ArrayView(elements)).elements().size(), 2U);
  EXPECT_TRUE(View(std::string_view("text")).elements().empty());
  EXPECT_TRUE(View(ObjectView()).elements().empty());
  EXPECT_TRUE(View().elements().empty());
}

TEST(ObjectView, FindsMembersByTheWholeKey) {
  const std::array members{MemberView{"a", View(Number("1"))}, MemberView{"ab", View(Number("2"))},
                           MemberView{"", View(Number("3"))}};
  const ObjectView object(members);
  EXPECT_EQ(object.find("a").number()->integer(), 1);
  EXPECT_EQ(object.find("ab").number()->integer(), 2);
  EXPECT_EQ(object.find("").number()->integer(), 3);
  EXPECT_FALSE(object.find("b").exists());
  EXPECT_FALSE(object.find("A").exists());
  EXPECT_FALSE(object.find(std::string_view("a\0", 2)).exists());
  EXPECT_FALSE(ObjectView().find("a").exists());
  EXPECT_EQ(object.size(), 3U);
  EXPECT_FALSE(object.empty());
  EXPECT_TRUE(ObjectView().empty());
}

TEST(ObjectView, TellsANullMemberFromAMissingOne) {
  const std::array members{MemberView{"null", View(nullptr)}};
  EXPECT_TRUE(ObjectView(members).find("null").exists());
  EXPECT_TRUE(ObjectView(members).find("null").isNull());
  EXPECT_FALSE(ObjectView(members).find("none").isNull());
}

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
