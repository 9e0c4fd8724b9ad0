#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace quillstead::JSON {
namespace {

TEST(Document, DoesNotNeedTheBytesItWasReadFrom) {
  const std::string expected = R"({"key":["a text","one\n",12.50,true,null,{"inner":{}}]})";
  std::string bytes = expected;
  const std::optional<Document> document = read(bytes);
  ASSERT_TRUE(document);
  bytes.assign(bytes.size(), '#');
  EXPECT_EQ(write(document->root(), Slashes::plain), expected);
}

TEST(Document, KeepsItsViewsValidWhenItIsMoved) {
  const std::string text = R"(["x",{"k":1}])";
  std::vector<Document> moved;
  View root;
  {
    std::optional<Document> document = read(text);
    ASSERT_TRUE(document);
    root = document->root();
    moved.push_back(*std::move(document));
  }
  std::vector<Document> several;
  several.push_back(*read("[1]"));
  several.push_back(*read("[2]"));
  EXPECT_EQ(write(root, Slashes::plain), text);
  EXPECT_EQ(write(moved.front().root(), Slashes::plain), text);
  EXPECT_EQ(write(several.front().root(), Slashes::plain), "[1]");
}

TEST(Document, HasMembersAtTheTopOnlyWhenThereIsAnObject) {
  EXPECT_EQ(read(R"({"a":1,"b":2})")->object().size(), 2U);
  EXPECT_TRUE(read("{}")->object().empty());
  EXPECT_TRUE(read(R"([{"a":1}])")->object().empty());
}

TEST(Arena, GivesEveryPartAPlaceOfItsOwn) {
  for (const std::size_t first : {std::size_t{0}, std::size_t{1}, std::size_t{100}}) {
    Arena arena(first);
    std::vector<std::pair<char*, std::size_t>> parts;
    for (std::size_t size = 0; size < 300; ++size) {
      parts.emplace_back(static_cast<char*>(arena.take(size)), size);
      std::memset(parts.back().first, static_cast<int>(size % 256), size);
    }
    for (const auto& [place, size] : parts) {
      EXPECT_EQ(std::string(place, size), std::string(size, static_cast<char>(size % 256)));
    }
  }
}

TEST(Arena, GivesPlacesThatSuitEveryType) {
  Arena arena(64);
  for (std::size_t size = 1; size < 200; ++size) {
    const auto address = reinterpret_cast<std::uintptr_t>(arena.take(size));
    EXPECT_EQ(address % alignof(std::max_align_t), 0U) << size;
  }
}

TEST(Arena, TakesPartsLargerThanAllBeforeThem) {
  Arena arena(16);
  auto* const large = static_cast<char*>(arena.take(10'000'000));
  large[0] = 'a';
  large[9'999'999] = 'z';
  auto* const small = static_cast<char*>(arena.take(1));
  *small = '.';
  EXPECT_EQ(large[0], 'a');
  EXPECT_EQ(large[9'999'999], 'z');
}

TEST(Arena, CopiesItems) {
  Arena arena(64);
  std::vector<int> numbers(1'000);
  std::iota(numbers.begin(), numbers.end(), 0);
  const std::span<const int> copied = arena.copy(std::span<const int>(numbers));
  const std::span<const int> none = arena.copy(std::span<const int>());
  numbers.assign(1'000, -1);
  ASSERT_EQ(copied.size(), 1'000U);
  EXPECT_EQ(copied.front(), 0);
  EXPECT_EQ(copied.back(), 999);
  EXPECT_TRUE(none.empty());
}

TEST(Arena, LeavesEverythingWhereItIsWhenItIsMoved) {
  Arena arena(64);
  const std::vector<int> numbers{1, 2, 3};
  const std::span<const int> copied = arena.copy(std::span<const int>(numbers));
  Arena moved(std::move(arena));
  static_cast<void>(moved.take(1'000));
  EXPECT_EQ(std::vector<int>(copied.begin(), copied.end()), numbers);
}

}  // namespace
}  // namespace quillstead::JSON
