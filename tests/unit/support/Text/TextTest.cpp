#include "support/Text/Text.h"
#include "unit/helpers/JSONValues.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillstead::Text {
namespace {

using namespace std::string_view_literals;

std::string utf8(std::u32string_view text) { return unit::encoded(text, JSON::Encoding::utf8); }

constexpr std::u32string_view whiteSpace =
    U"\t\n\v\f\r \u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009"
    U"\u200A\u2028\u2029\u202F\u205F\u3000";

std::string replacements(std::size_t count) {
  std::string text;
  for (; count > 0; --count) text += replacementCharacter;
  return text;
}

TEST(Trimmed, TakesEveryWhiteSpaceOffBothEnds) {
  for (const char32_t character : whiteSpace) {
    SCOPED_TRACE(static_cast<std::uint32_t>(character));
    const std::string space = utf8(std::u32string(1, character));
    EXPECT_EQ(trimmed(space + "a" + space + "b" + space), "a" + space + "b");
    EXPECT_EQ(trimmed(space), "");
  }
  const std::string all = utf8(whiteSpace);
  EXPECT_EQ(trimmed(all + all + "x" + all + all), "x");
}

TEST(Trimmed, LeavesEverythingElseWhereItIs) {
  for (char32_t character = 0; character < 0x3100; ++character) {
    if (whiteSpace.find(character) != std::u32string_view::npos) continue;
    const std::string text = utf8(std::u32string(1, character));
    ASSERT_EQ(trimmed(text), text) << static_cast<std::uint32_t>(character);
  }
}

TEST(Trimmed, DoesNotTakeAZeroWidthSpaceOrAByteOrderMarkForWhiteSpace) {
  for (const std::u32string_view text : {U"\u200B", U"\uFEFF", U"\u180E", U"\u2060", U"\u200D"}) {
    EXPECT_EQ(trimmed(utf8(text)), utf8(text));
    EXPECT_FALSE(isBlank(utf8(text)));
  }
}

TEST(Trimmed, TakesInvalidBytesForText) {
  for (const std::string_view bytes : {"\xFF"sv, "\x80"sv, "\xC2"sv, "\xE2\x80"sv, "\x85"sv,
                                       "\xA0"sv, "\xE3\x80"sv, "\x80\x80\x80\x80\x80"sv, "\0"sv}) {
    EXPECT_EQ(trimmed(bytes), bytes);
    EXPECT_EQ(trimmed(" " + std::string(bytes) + " "), bytes);
  }
}

TEST(Trimmed, TakesWhiteSpaceOffBehindInvalidBytes) {
  EXPECT_EQ(trimmed("\xFF\xE3\x80\x80"sv), "\xFF");
  EXPECT_EQ(trimmed("\xE3\x80\x80\x80"sv), "\x80");
  EXPECT_EQ(trimmed("a\x80\xC2\x85"sv), "a\x80");
}

TEST(IsBlank, HoldsForNothingAndForWhiteSpaceOnly) {
  EXPECT_TRUE(isBlank(""));
  EXPECT_TRUE(isBlank("  \r\n\t"));
  EXPECT_TRUE(isBlank(utf8(whiteSpace)));
  EXPECT_FALSE(isBlank(" . "));
  EXPECT_FALSE(isBlank("\0"sv));
}

TEST(Repaired, LeavesValidTextAsItIs) {
  const std::string text = utf8(U"a\u00E9\u20AC\U0001F600\uFFFF\U0010FFFF");
  EXPECT_EQ(repaired(text), text);
  EXPECT_EQ(repaired(""), "");
}

TEST(Repaired, PutsOneReplacementForEachLongestBeginningOfACharacter) {
  struct Case {
    const char* name;
    std::string_view bytes;
    std::string expected;
  };
  const std::vector<Case> cases{
      {"overlong sequences", "\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", replacements(8) + "A"},
      {"surrogates", "\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", replacements(8) + "A"},
      {"beyond the last character", "\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42",
       replacements(5) + "A" + replacements(2) + "B"},
      {"cut sequences", "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", replacements(4) + "A"},
      {"a lead byte at the end", "a\xC3", "a" + replacements(1)},
      {"2 of 3 bytes at the end", "a\xE2\x82", "a" + replacements(1)},
      {"3 of 4 bytes at the end", "a\xF0\x9F\x98", "a" + replacements(1)},
      {"2 of 4 bytes before text",
       "\xF0\x9F"
       "b",
       replacements(1) + "b"},
      {"3 of 4 bytes before text",
       "\xF0\x9F\x98"
       "b",
       replacements(1) + "b"},
      {"2 of 3 bytes before a character", "\xE2\x82\xC3\xA9", replacements(1) + "\xC3\xA9"},
      {"a 2-byte lead before text",
       "\xC3"
       "b",
       replacements(1) + "b"},
      {"a second byte that is too low", "\xE0\x9F\x80", replacements(3)},
      {"a second byte of 4 that is too low", "\xF0\x8F\x80\x80", replacements(4)},
      {"a second byte of 4 that is too high", "\xF4\x90\x80\x80", replacements(4)},
      {"leads that never occur", "\xC1\xF5\xF8\xFC\xFE\xFF", replacements(6)},
      {"one continuation byte too many", "\xC3\xA9\xA9", "\xC3\xA9" + replacements(1)},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(repaired(std::string(one.bytes)), one.expected);
  }
}

TEST(Repaired, GivesValidTextForAnyBytes) {
  unit::ValueGenerator random(7);
  for (int i = 0; i < 20'000; ++i) {
    std::string bytes;
    for (std::size_t length = random.below(8); length > 0; --length) {
      // Mostly bytes that occur in longer characters, so that they often nearly make one.
      bytes +=
          static_cast<char>(random.below(4) == 0 ? random.below(256) : 0x80 + random.below(128));
    }
    const std::string text = repaired(bytes);
    ASSERT_EQ(repaired(text), text);
    for (std::string_view rest = text; !rest.empty();) {
      const Decoded decoded = decodeFirst(rest);
      ASSERT_TRUE(decoded.valid);
      rest.remove_prefix(decoded.length);
    }
  }
}

TEST(DecodeFirst, GivesTheCharacterAndItsLength) {
  for (const char32_t character :
       U"a\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"sv) {
    const std::string text = utf8(std::u32string(1, character));
    const Decoded decoded = decodeFirst(text + "rest");
    EXPECT_TRUE(decoded.valid);
    EXPECT_EQ(decoded.character, character);
    EXPECT_EQ(decoded.length, text.size());
  }
  const Decoded nul = decodeFirst("\0a"sv);
  EXPECT_TRUE(nul.valid);
  EXPECT_EQ(nul.length, 1U);
}

TEST(AppendCharacter, AddsEveryCharacterAndNothingElse) {
  std::string text = "a";
  for (const std::uint32_t character : {0xE9U, 0x20ACU, 0x1F600U, 0x10FFFFU, 0U}) {
    EXPECT_TRUE(appendCharacter(text, character));
  }
  EXPECT_EQ(text, "a" + utf8(U"\u00E9\u20AC\U0001F600\U0010FFFF\0"sv));
  const std::string before = text;
  for (const std::uint32_t none : {0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU}) {
    EXPECT_FALSE(appendCharacter(text, none));
    EXPECT_EQ(text, before);
  }
}

struct Cluster {
  const char* name;
  std::u32string_view text;  ///< one user-perceived character
};

const std::vector<Cluster> clusters{
    {"a letter", U"a"},
    {"a letter with a combining mark", U"e\u0301"},
    {"a letter with many combining marks", U"Z\u0351\u036B\u0343\u036A\u0302"},
    {"CR LF", U"\r\n"},
    {"LF", U"\n"},
    {"CR", U"\r"},
    {"an emoji with a skin tone", U"\U0001F44D\U0001F3FD"},
    {"a family joined together", U"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"},
    {"an emoji with a variation selector", U"\u2764\uFE0F"},
    {"a flag", U"\U0001F1E9\U0001F1EA"},
    {"a Hangul syllable in parts", U"\u1112\u1161\u11AB"},
    {"a Hangul syllable and a final", U"\uD55C\u11AB"},
    {"a Devanagari letter with a vowel sign", U"\u0928\u093F"},
    {"a keycap", U"1\uFE0F\u20E3"},
    {"NUL", U"\0"sv},
};

TEST(FirstCharacters, CountsWhatAReaderSeesAsOneCharacter) {
  for (const Cluster& cluster : clusters) {
    SCOPED_TRACE(cluster.name);
    const std::string one = utf8(cluster.text);
    const std::string three = one + "." + one + "." + one;
    EXPECT_EQ(firstCharacters(three, 0), "");
    EXPECT_EQ(firstCharacters(three, 1), one);
    EXPECT_EQ(firstCharacters(three, 2), one + ".");
    EXPECT_EQ(firstCharacters(three, 3), one + "." + one);
    EXPECT_EQ(firstCharacters(three, 5), three);
    EXPECT_EQ(firstCharacters(three, 1000), three);
  }
}

TEST(FirstCharacters, PairsFlagsFromTheStart) {
  const std::string flag = utf8(U"\U0001F1E9\U0001F1EA");
  EXPECT_EQ(firstCharacters(flag + flag + flag, 2), flag + flag);
  EXPECT_EQ(firstCharacters(utf8(U"\U0001F1E9\U0001F1EA\U0001F1EB"), 1), flag);
}

TEST(FirstCharacters, SeparatesLineEndsFromMarks) {
  EXPECT_EQ(firstCharacters(utf8(U"\n\u0301a"), 1), "\n");
  EXPECT_EQ(firstCharacters("\n\r\n", 1), "\n");
  EXPECT_EQ(firstCharacters("\n\r\n", 2), "\n\r\n");
  EXPECT_EQ(firstCharacters("\r\r\n", 1), "\r");
}

TEST(FirstCharacters, CutsLongTextsOfAnyBytes) {
  EXPECT_EQ(firstCharacters(std::string(3000, 'a'), 1000), std::string(1000, 'a'));
  EXPECT_EQ(firstCharacters("\xFF\xFE\xFD"sv, 2), "\xFF\xFE");
  EXPECT_EQ(firstCharacters("", 5), "");
}

}  // namespace
}  // namespace quillstead::Text
