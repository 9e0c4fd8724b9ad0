#include "support/JSON/Appender.h"

#include <gtest/gtest.h>

namespace quillstead::JSON {
namespace {

using Text::Blocks::Block;
using Text::Blocks::Byte;

Block areQuotes(Block bytes) { return bytes == Byte{'"'}; }

std::string letters(std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) text += static_cast<char>('a' + i % 26);
  return text;
}

TEST(Appender, LeavesTheTextThatWasThereInFront) {
  std::string text = "there ";
  Appender appender(text);
  appender += "before";
  appender.end();
  EXPECT_EQ(text, "there before");
}

TEST(Appender, AppendsNothing) {
  std::string text;
  Appender appender(text);
  appender += "";
  EXPECT_EQ(appender.appendBefore("", areQuotes), 0U);
  EXPECT_EQ(appender.appendBefore("\"", areQuotes), 0U);
  appender.end();
  EXPECT_EQ(text, "");
}

TEST(Appender, KeepsTheOrderOfBytesPiecesAndRuns) {
  std::string text;
  Appender appender(text);
  std::string expected;
  for (std::size_t size = 0; size < 300; ++size) {
    const std::string run = letters(size);
    appender += '<';
    EXPECT_EQ(appender.appendBefore(run + "\" not this", areQuotes), size);
    appender += "|";
    appender += run;
    appender += '>';
    expected += "<" + run + "|" + run + ">";
  }
  appender.end();
  EXPECT_EQ(text, expected);
}

TEST(Appender, TakesPairsAtEveryFilling) {
  for (const std::size_t filled : {0U, 1U, 4093U, 4094U, 4095U, 4096U, 4097U}) {
    std::string text;
    Appender appender(text);
    const std::string before = letters(filled);
    for (const char letter : before) appender += letter;
    appender.appendPair('\\', 'n');
    appender.appendPair('\\', '"');
    appender.end();
    EXPECT_EQ(text, before + "\\n\\\"");
  }
}

TEST(Appender, TakesRunsAndPiecesOfEverySizeAtEveryFilling) {
  for (const std::size_t filled : {0U, 1U, 15U, 16U, 4079U, 4080U, 4081U, 4095U, 4096U}) {
    for (const std::size_t size : {1U, 15U, 16U, 17U, 4095U, 4096U, 4097U, 8192U, 70'000U}) {
      const std::string start(filled, '.');
      const std::string more = letters(size);
      for (const bool isRun : {false, true}) {
        std::string text;
        Appender appender(text);
        appender += start;
        if (isRun) {
          EXPECT_EQ(appender.appendBefore(more, areQuotes), size);
        } else {
          appender += more;
        }
        appender += '.';
        appender.end();
        EXPECT_EQ(text, start + more + ".") << filled << ", " << size << ", " << isRun;
      }
    }
  }
}

TEST(Appender, MovesALargeTextAFewTimesOnly) {
  std::string text;
  Appender appender(text);
  const std::string piece(1'000, '.');
  std::size_t moves = 0;
  for (int i = 0; i < 5'000; ++i) {
    const char* const place = text.data();
    const bool isLarge = text.size() > 100'000;
    appender += piece;
    if (isLarge && text.data() != place) ++moves;
  }
  appender.end();
  EXPECT_EQ(text, std::string(5'000'000, '.'));
  EXPECT_LE(moves, 4U);
}

}  // namespace
}  // namespace quillstead::JSON
