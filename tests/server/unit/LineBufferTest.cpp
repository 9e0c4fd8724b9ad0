#include "server/LineBuffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

namespace {

/// The lines of `text` when it comes in pieces of `size` bytes; "!" for one that is too long.
std::vector<std::string> linesOf(std::string_view text, std::size_t size, std::size_t longest) {
  LineBuffer buffer(longest);
  std::vector<std::string> lines;
  const auto keep = [&](const LineBuffer::Line& line) {
    const auto* kept = std::get_if<std::string>(&line);
    lines.push_back(kept ? *kept : "!");
  };
  while (!text.empty()) {
    buffer.add(text.substr(0, size));
    text.remove_prefix(std::min(size, text.size()));
    while (const auto line = buffer.take()) keep(*line);
  }
  if (const auto rest = buffer.takeRest()) keep(*rest);
  EXPECT_FALSE(buffer.takeRest());
  return lines;
}

TEST(LineBuffer, GivesTheSameLinesHoweverTheBytesCome) {
  const std::string_view text = "one\n\nthree\r\nlonger than eight\nfive\ntoolongatend";
  for (const std::size_t size : {1U, 2U, 3U, 7U, 16U, 100U}) {
    SCOPED_TRACE(size);
    EXPECT_THAT(linesOf(text, size, 8),
                ::testing::ElementsAre("one", "", "three\r", "!", "five", "!"));
  }
}

TEST(LineBuffer, KeepsALineOfExactlyTheLongestLength) {
  EXPECT_THAT(linesOf("12345678\n12345678", 5, 8), ::testing::ElementsAre("12345678", "12345678"));
}

TEST(LineBuffer, HasNothingLeftAfterALineFeed) {
  EXPECT_THAT(linesOf("a\n", 1, 8), ::testing::ElementsAre("a"));
  EXPECT_THAT(linesOf("", 1, 8), ::testing::IsEmpty());
}

TEST(LineBuffer, DoesNotKeepALineThatIsTooLong) {
  LineBuffer buffer(1'000);
  const std::string piece(1'000, 'x');
  for (int count = 0; count < 10'000; ++count) {
    buffer.add(piece);
    EXPECT_FALSE(buffer.take());
  }
  buffer.add("\nnext\n");
  EXPECT_TRUE(std::holds_alternative<LineBuffer::TooLong>(*buffer.take()));
  EXPECT_EQ(std::get<std::string>(*buffer.take()), "next");
}

}  // namespace

}  // namespace quillstead::server
