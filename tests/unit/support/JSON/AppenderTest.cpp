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

class AppenderTest : public testing::Test {
 protected:
  Appender appender;
  std::string text;
};

TEST_F(AppenderTest, LeavesTheTextThatWasThereInFront) {
  text = "there ";
  appender.begin(text);
  appender += "before";
  appender.end();
  EXPECT_EQ(text, "there before");
}

TEST_F(AppenderTest, AppendsNothing) {
  appender.begin(text);
  appender += "";
  EXPECT_EQ(appender.appendBefore("", areQuotes), 0U);
  EXPECT_EQ(appender.appendBefore("\"", areQuotes), 0U);
  appender.end();
  EXPECT_EQ(text, "");
}

TEST_F(AppenderTest, KeepsTheOrderOfBytesPiecesAndRuns) {
  appender.begin(text);
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

TEST_F(AppenderTest, TakesRunsAndPiecesOfEverySizeAtEveryFilling) {
  for (const std::size_t filled : {0U, 1U, 15U, 16U, 4079U, 4080U, 4081U, 4095U, 4096U}) {
    for (const std::size_t size : {1U, 15U, 16U, 17U, 4095U, 4096U, 4097U, 8192U, 70'000U}) {
      const std::string start(filled, '.');
      const std::string more = letters(size);
      for (const bool isRun : {false, true}) {
        text.clear();
        appender.begin(text);
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

TEST_F(AppenderTest, BeginsEachTextAnew) {
  appender.begin(text);
  appender += "left behind";
  std::string second;
  appender.begin(second);
  appender += "second";
  appender.end();
  EXPECT_EQ(text, "");
  EXPECT_EQ(second, "second");
}

TEST_F(AppenderTest, MakesNoMoreRoomThanTheTextCanNeed) {
  constexpr std::size_t size = 1'000'000;
  appender.begin(text, size);
  EXPECT_EQ(appender.appendBefore(letters(size), areQuotes), size);
  appender.end();
  EXPECT_EQ(text, letters(size));
  EXPECT_LE(text.capacity(), size);
}

}  // namespace
}  // namespace quillstead::JSON
