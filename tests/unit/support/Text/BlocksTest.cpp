#include "support/Text/Blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace quillstead::Text::Blocks {
namespace {

std::size_t bytesBeforeQuoteOrControl(std::string_view text) {
  return bytesBefore(text, [](Block bytes) { return (bytes == Byte{'"'}) | (bytes < Byte{' '}); });
}

TEST(BytesBefore, EndsAtTheFirstByteFoundWhereverItStands) {
  for (std::size_t size = 1; size <= 70; ++size) {
    for (std::size_t place = 0; place < size; ++place) {
      for (const char found : {'"', '\0', '\x1F'}) {
        std::string text(size, 'a');
        text[place] = found;
        EXPECT_EQ(bytesBeforeQuoteOrControl(text), place) << "of " << size;
        text.back() = '"';
        EXPECT_EQ(bytesBeforeQuoteOrControl(text), place) << "of " << size;
      }
    }
  }
}

TEST(BytesBefore, IsTheWholeTextWhenNothingIsFound) {
  for (std::size_t size = 0; size <= 70; ++size) {
    EXPECT_EQ(bytesBeforeQuoteOrControl(std::string(size, 'a')), size);
  }
}

TEST(BytesBefore, ComparesBytesAsNumbersFrom0To255) {
  for (unsigned limit = 0; limit < 256; ++limit) {
    const std::string text(17, static_cast<char>(limit));
    const std::size_t whole = text.size();
    EXPECT_EQ(bytesBeforeQuoteOrControl(text), limit < ' ' || limit == '"' ? 0 : whole) << limit;
    EXPECT_EQ(bytesBefore(text, [](Block bytes) { return bytes >= Byte{0x80}; }),
              limit >= 0x80 ? 0 : whole)
        << limit;
  }
}

TEST(CopyBefore, CopiesWhatComesBeforeTheFirstByteFoundAndNoBlockBeyondItsOwn) {
  constexpr std::size_t blockSize = sizeof(Block);
  for (std::size_t size = 0; size <= 70; ++size) {
    for (std::size_t place = 0; place <= size; ++place) {
      std::string text = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789!$%&()*+";
      text.resize(size);
      if (place < size) text[place] = '"';
      std::string copy(5 * blockSize + 1, '#');
      const std::size_t before =
          copyBefore(text, copy.data(), [](Block bytes) { return bytes == Byte{'"'}; });
      EXPECT_EQ(before, place) << "of " << size;
      EXPECT_EQ(copy.substr(0, before), text.substr(0, place)) << "of " << size;
      const std::size_t touched =
          std::min(place / blockSize + 1, (size + blockSize - 1) / blockSize);
      EXPECT_EQ(copy[touched * blockSize], '#') << place << " of " << size;
    }
  }
}

}  // namespace
}  // namespace quillstead::Text::Blocks
