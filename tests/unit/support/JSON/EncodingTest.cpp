#include "support/JSON/Encoding.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

#include <array>

namespace quillstead::JSON {
namespace {

using namespace std::string_view_literals;
using unit::encoded;

constexpr std::array everyEncoding{Encoding::utf8, Encoding::utf16LittleEndian,
                                   Encoding::utf16BigEndian, Encoding::utf32LittleEndian,
                                   Encoding::utf32BigEndian};

constexpr std::array wideEncodings{Encoding::utf16LittleEndian, Encoding::utf16BigEndian,
                                   Encoding::utf32LittleEndian, Encoding::utf32BigEndian};

TEST(Encoding, RecognisesEveryByteOrderMark) {
  struct Case {
    std::string_view bytes;
    Encoding encoding;
    std::size_t markLength;
  };
  const std::array cases{
      Case{"\xEF\xBB\xBF[]"sv, Encoding::utf8, 3},
      Case{"\xFF\xFE[\0]\0"sv, Encoding::utf16LittleEndian, 2},
      Case{"\xFE\xFF\0[\0]"sv, Encoding::utf16BigEndian, 2},
      Case{"\xFF\xFE\0\0[\0\0\0"sv, Encoding::utf32LittleEndian, 4},
      Case{"\0\0\xFE\xFF\0\0\0["sv, Encoding::utf32BigEndian, 4},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(static_cast<int>(one.encoding));
    const DetectedEncoding detected = detectEncoding(one.bytes);
    EXPECT_EQ(detected.encoding, one.encoding);
    EXPECT_EQ(detected.markLength, one.markLength);
  }
}

TEST(Encoding, RecognisesEveryEncodingByItsZeroBytes) {
  for (const Encoding encoding : everyEncoding) {
    for (const std::u32string_view document : {U"{}"sv, U"[\"\u20AC\"]"sv, U"  []"sv}) {
      SCOPED_TRACE(static_cast<int>(encoding));
      const DetectedEncoding detected = detectEncoding(encoded(document, encoding));
      EXPECT_EQ(detected.encoding, encoding);
      EXPECT_EQ(detected.markLength, 0U);
    }
  }
}

TEST(Encoding, TakesShortInputsForWhatTheyCanBe) {
  EXPECT_EQ(detectEncoding("").encoding, Encoding::utf8);
  EXPECT_EQ(detectEncoding("[").encoding, Encoding::utf8);
  EXPECT_EQ(detectEncoding("\xEF\xBB").encoding, Encoding::utf8);
  EXPECT_EQ(detectEncoding("[\0"sv).encoding, Encoding::utf16LittleEndian);
  EXPECT_EQ(detectEncoding("\0["sv).encoding, Encoding::utf16BigEndian);
}

TEST(Encoding, TurnsEveryWideEncodingIntoTheSameUTF8) {
  const std::u32string_view text = U"a\0\u00E9\u20AC\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"sv;
  for (const Encoding encoding : wideEncodings) {
    SCOPED_TRACE(static_cast<int>(encoding));
    EXPECT_EQ(toUTF8(encoded(text, encoding), encoding), encoded(text, Encoding::utf8));
    EXPECT_EQ(toUTF8("", encoding), "");
  }
}

TEST(Encoding, RefusesAUnitThatIsCutOff) {
  for (const Encoding encoding : wideEncodings) {
    SCOPED_TRACE(static_cast<int>(encoding));
    std::string bytes = encoded(U"[]", encoding);
    while (bytes.size() % 4 != 1) bytes.pop_back();
    EXPECT_EQ(toUTF8(bytes, encoding), std::nullopt);
  }
  EXPECT_EQ(toUTF8("[\0\0"sv, Encoding::utf32LittleEndian), std::nullopt);
  EXPECT_EQ(toUTF8("[\0"sv, Encoding::utf32LittleEndian), std::nullopt);
}

TEST(Encoding, RefusesASurrogateThatStandsAlone) {
  struct Case {
    const char* name;
    std::string_view bytes;
    Encoding encoding;
  };
  const std::array cases{
      Case{"high at the end", "\x3D\xD8"sv, Encoding::utf16LittleEndian},
      Case{"high before a letter",
           "\x3D\xD8"
           "a\0"sv,
           Encoding::utf16LittleEndian},
      Case{"high before a high", "\xD8\x3D\xD8\x3D"sv, Encoding::utf16BigEndian},
      Case{"low first", "\xDE\x00\xD8\x3D"sv, Encoding::utf16BigEndian},
      Case{"high in 32 bits", "\0\0\xD8\x3D"sv, Encoding::utf32BigEndian},
      Case{"low in 32 bits", "\xFF\xDF\0\0"sv, Encoding::utf32LittleEndian},
      Case{"a pair in 32 bits", "\0\0\xD8\x3D\0\0\xDE\0"sv, Encoding::utf32BigEndian},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(toUTF8(one.bytes, one.encoding), std::nullopt);
  }
}

TEST(Encoding, RefusesWhatIsBeyondTheLastCharacter) {
  EXPECT_EQ(toUTF8("\0\x11\0\0"sv, Encoding::utf32BigEndian), std::nullopt);
  EXPECT_EQ(toUTF8("\x7F\xFF\xFF\xFF"sv, Encoding::utf32BigEndian), std::nullopt);
  EXPECT_EQ(toUTF8("\x80\0\0\x41"sv, Encoding::utf32BigEndian), std::nullopt);
  EXPECT_EQ(toUTF8("\xFF\xFF\xFF\xFF"sv, Encoding::utf32LittleEndian), std::nullopt);
}

}  // namespace
}  // namespace quillstead::JSON
