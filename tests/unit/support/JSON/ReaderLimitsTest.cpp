#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace quillstead::JSON {
namespace {

std::string times(std::size_t count, std::string_view text) {
  const std::size_t size = count * text.size();
  std::string all(text);
  while (all.size() < size) all += all;
  all.resize(size);
  return all;
}

struct Nesting {
  const char* name;
  std::function<std::string(std::size_t depth)> document;
};

/// Arrays at even depths, objects at odd ones.
std::string mixture(std::size_t depth) {
  std::string opening;
  std::string closing;
  for (std::size_t i = 0; i < depth; ++i) {
    opening += i % 2 == 0 ? "[" : "{\"a\":";
    closing.insert(closing.begin(), i % 2 == 0 ? ']' : '}');
  }
  return opening + (depth % 2 == 0 ? "1" : "") + closing;
}

const std::vector<Nesting> nestings{
    {"arrays", [](std::size_t depth) { return times(depth, "[") + times(depth, "]"); }},
    {"arrays with values around",
     [](std::size_t depth) { return times(depth, "[1,") + "2" + times(depth, ",{}]"); }},
    {"objects",
     [](std::size_t depth) { return times(depth - 1, "{\"a\":") + "{}" + times(depth - 1, "}"); }},
    {"a mixture", mixture},
};

TEST(ReaderLimits, ReadsContainersNested512Deep) {
  EXPECT_EQ(maximumDepth, 512U);
  for (const std::size_t depth : {1U, 2U, 511U, 512U}) {
    EXPECT_TRUE(read(nestings[0].document(depth))) << depth;
    EXPECT_TRUE(read(nestings[2].document(depth))) << depth;
    EXPECT_TRUE(read(mixture(depth))) << depth;
  }
  EXPECT_TRUE(read(nestings[1].document(511)));
}

TEST(ReaderLimits, RefusesContainersNested513Deep) {
  for (const Nesting& nesting : nestings) {
    SCOPED_TRACE(nesting.name);
    EXPECT_FALSE(read(nesting.document(513)));
    EXPECT_FALSE(read(nesting.document(5'000)));
  }
  EXPECT_FALSE(read(nestings[1].document(512))) << "the innermost braces are the 513th";
}

TEST(ReaderLimits, RefusesAMillionOpenBracketsInLittleStack) {
  EXPECT_FALSE(read(times(1'000'000, "[")));
  EXPECT_FALSE(read(times(1'000'000, "{\"a\":")));
  EXPECT_FALSE(read(times(1'000'000, "[") + times(1'000'000, "]")));
}

TEST(ReaderLimits, WritesTheDeepestDocumentsBack) {
  for (const Nesting& nesting : {nestings[0], nestings[2], nestings[3]}) {
    SCOPED_TRACE(nesting.name);
    const std::string document = nesting.document(512);
    const std::optional<Document> value = read(document);
    ASSERT_TRUE(value);
    EXPECT_EQ(write(value->root(), Slashes::plain), document);
  }
}

TEST(ReaderLimits, ReadsHugeFlatDocuments) {
  constexpr std::size_t count = 50'000;
  const std::optional<Document> array = read("[" + times(count, "1234,") + "1]");
  ASSERT_TRUE(array && array->root().array());
  EXPECT_EQ(array->root().array()->size(), count + 1);

  std::string members = "{\"first\":0";
  for (std::size_t i = 0; i < count; ++i) members += ",\"k" + std::to_string(i) + "\":[]";
  const std::optional<Document> object = read(members + "}");
  ASSERT_TRUE(object && object->root().object());
  EXPECT_EQ(object->root().object()->size(), count + 1);
  EXPECT_EQ(write(object->root(), Slashes::plain), members + "}");
}

TEST(ReaderLimits, CountsForTheDepthOnlyContainersThatAreOpen) {
  for (const std::string_view container : {"[],", "{},", "[0],", R"({"a":0},)"}) {
    EXPECT_TRUE(read("[" + times(2 * maximumDepth, container) + "0]")) << container;
  }
}

TEST(ReaderLimits, ReadsATextOfMegabytes) {
  const std::string text = times(500'000, "a\xC3\xA9/ ");
  const std::optional<Document> value = read("[\"" + text + "\"]");
  ASSERT_TRUE(value && value->root().array());
  EXPECT_EQ(*value->root().array()->front().string(), text);
}

TEST(ReaderLimits, ReadsTheSameTextWhereverItsBlocksBegin) {
  const std::string text = times(64, "plain ") + "\xC3\xA9\xF0\x9F\x99\x82" + times(64, "x");
  for (std::size_t shift = 0; shift < 70; ++shift) {
    const std::string shifted = times(shift, "y") + text;
    for (const auto& [written, character] : std::vector<std::pair<std::string, std::string>>{
             {"\\n", "\n"}, {"\\\"", "\""}, {"\\u00e9", "\xC3\xA9"}, {"\\\\", "\\"}}) {
      const std::optional<Document> value = read("[\"" + shifted + written + text + "\"]");
      ASSERT_TRUE(value && value->root().array()) << shift << written;
      EXPECT_EQ(*value->root().array()->front().string(), shifted + character + text);
    }
    for (const char raw : {'\n', '\0', '\x1F', '\x80', '\xFF'}) {
      EXPECT_FALSE(read("[\"" + shifted + raw + text + "\"]")) << shift << raw;
    }
  }
}

TEST(ReaderLimits, ReadsSeveralLongTextsFullOfEscapes) {
  const std::size_t lines = 100'000;
  const std::string text = times(lines, "the quick brown fox jumps over the lazy\n");
  const std::string written = times(lines, "the quick brown fox jumps over the lazy\\n");
  const std::string document =
      "[\"" + written + "\",\"" + written.substr(0, 70'000) + "\",\"" + written + "\"]";
  const std::optional<Document> value = read(document);
  ASSERT_TRUE(value && value->root().array());
  EXPECT_EQ(*value->root().array()->front().string(), text);
  EXPECT_EQ(*value->root().array()->back().string(), text);
  EXPECT_EQ(write(value->root(), Slashes::plain), document);
}

TEST(ReaderLimits, KeepsTheLastOfAHundredThousandRepeatedKeys) {
  std::string document = "{\"before\":0";
  for (int i = 0; i < 100'000; ++i) document += ",\"k\":" + std::to_string(i);
  const std::optional<Document> value = read(document + ",\"after\":1}");
  ASSERT_TRUE(value);
  EXPECT_EQ(write(value->root(), Slashes::plain), R"({"before":0,"k":99999,"after":1})");
}

TEST(ReaderLimits, KeepsTheLastValuesOfManyKeysRepeated) {
  constexpr int count = 10'000;
  std::string document = "{\"k0\":0";
  std::string expected = "{\"k0\":70000";
  for (int i = 1; i < count; ++i) document += ",\"k" + std::to_string(i) + "\":0";
  for (int i = 0; i < count; ++i) {
    document += ",\"k" + std::to_string(i) + "\":" + std::to_string(70'000 + i);
    if (i > 0) expected += ",\"k" + std::to_string(i) + "\":" + std::to_string(70'000 + i);
  }
  const std::optional<Document> value = read(document + "}");
  ASSERT_TRUE(value);
  EXPECT_EQ(write(value->root(), Slashes::plain), expected + "}");
}

TEST(ReaderLimits, ReadsMillionsOfValuesUnlessToldOtherwise) {
  const std::optional<Document> value = read("[" + times(2'000'000, "1,") + "1]");
  ASSERT_TRUE(value && value->root().array());
  EXPECT_EQ(value->root().array()->size(), 2'000'001U);
}

TEST(ReaderLimits, RefusesMoreValuesThanAllowedKeysAndContainersCounted) {
  const std::string document = R"({"a":[1,2],"b":{}})";  // the object, two keys, four values
  EXPECT_TRUE(read(document, 7));
  EXPECT_FALSE(read(document, 6));
  EXPECT_FALSE(read("[]", 0));
}

TEST(ReaderLimits, KeepsNumbersOfAThousandDigitsAsTheyAre) {
  for (const std::string& number :
       {"1" + times(999, "7"), "-" + times(1000, "9"), "0." + times(1000, "3"),
        times(1000, "5") + "." + times(1000, "1") + "e-1000", "1" + times(1000, "0"),
        "0." + times(1000, "0") + "1", "1e" + times(1000, "0") + "1", "1e" + times(1000, "9"),
        "-1.5E-" + times(1000, "9")}) {
    SCOPED_TRACE(number);
    const std::optional<Document> value = read("[" + number + "]");
    ASSERT_TRUE(value);
    EXPECT_EQ(write(value->root(), Slashes::plain), "[" + number + "]");
  }
}

}  // namespace
}  // namespace quillstead::JSON
