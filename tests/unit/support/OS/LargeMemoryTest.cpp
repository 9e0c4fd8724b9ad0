#include "support/OS/LargeMemory.h"

#include <gtest/gtest.h>

namespace quillstead::OS {
namespace {

constexpr std::size_t megabyte = 1 << 20U;

TEST(MakeRoom, LeavesSmallTextsAlone) {
  std::string text = "text";
  const std::size_t capacity = text.capacity();
  makeRoom(text, 60'000);
  EXPECT_EQ(text, "text");
  EXPECT_EQ(text.capacity(), capacity);
}

TEST(MakeRoom, GrowsALargeTextSixteenfold) {
  std::string text(megabyte, 'a');
  makeRoom(text, megabyte);
  EXPECT_EQ(text, std::string(megabyte, 'a'));
  EXPECT_GE(text.capacity(), 32 * megabyte);
  EXPECT_LT(text.capacity(), 32 * megabyte + 16);  // as a library rounds it up
}

TEST(MakeRoom, GrowsAHugeTextEightfold) {
  std::string text(megabyte, 'a');
  makeRoom(text, 63 * megabyte);
  EXPECT_GE(text.capacity(), 512 * megabyte);
  EXPECT_LT(text.capacity(), 512 * megabyte + 16);
}

TEST(MakeRoom, MovesNothingWhereThereIsRoom) {
  std::string text(megabyte, 'a');
  text.reserve(2 * megabyte);
  const char* const place = text.data();
  makeRoom(text, megabyte);
  EXPECT_EQ(text.data(), place);
}

TEST(MakeRoom, MovesATextThatGrowsByPiecesAFewTimesOnly) {
  std::string text;
  std::size_t moves = 0;
  for (std::size_t piece = 0; piece < 1'000; ++piece) {
    const char* const place = text.data();
    makeRoom(text, 65'536);
    text.append(65'536, 'a');
    if (text.data() != place) ++moves;
  }
  EXPECT_LE(moves, 5U);
}

TEST(PreferLargePages, TakesMemoryOfAnySizeAndPlace) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, 4 * megabyte, 9 * megabyte}) {
    std::string memory(size + 7, 'a');
    for (std::size_t shift = 0; shift < 7; ++shift) {
      preferLargePages(std::as_writable_bytes(std::span(memory).subspan(shift, size)));
    }
    EXPECT_EQ(memory, std::string(size + 7, 'a'));
  }
}

}  // namespace
}  // namespace quillstead::OS
