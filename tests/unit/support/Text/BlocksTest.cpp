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

void expectCopyUpTo(std::size_t place, std::string text) {
  SCOPED_TRACE(std::to_string(place) + " of " + std::to_string(text.size()));
  constexpr std::size_t blockSize = sizeof(Block);
  const auto areQuotes = [](Block bytes) { return bytes == Byte{'"'}; };
  if (place < text.size()) text[place] = '"';
  const std::size_t blocks = (text.size() + blockSize - 1) / blockSize;
  const std::size_t touched = std::min(place / blockSize + 1, blocks) * blockSize;
  for (const bool isLong : {false, true}) {
    std::string copy(text.size() + 2 * blockSize, '#');
    const std::size_t before = isLong ? copyLongBefore(text, copy.data(), areQuotes)
                                      : copyBefore(text, copy.data(), areQuotes);
    EXPECT_EQ(before, place);
    EXPECT_EQ(copy.substr(0, before), text.substr(0, place));
    EXPECT_EQ(copy[touched], '#');
  }
}

TEST(CopyBefore, CopiesWhatComesBeforeTheFirstByteFoundAndNoBlockBeyondItsOwn) {
  std::string text = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789!$%&()*+";
  for (;; text.pop_back()) {
    for (std::size_t place = 0; place <= text.size(); ++place) expectCopyUpTo(place, text);
    if (text.empty()) return;
  }
}

TEST(CopyBefore, CopiesLongTexts) {
  std::string text;
  for (std::size_t at = 0; at < 9 * longText + 5; ++at) text += static_cast<char>('a' + at % 23);
  for (const std::size_t place : {std::size_t{0}, longText, text.size() - 1, text.size()}) {
    expectCopyUpTo(place, text);
  }
}

}  // namespace
}  // namespace quillstead::Text::Blocks
