#include "support/Text/Character.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>

namespace quillstead::Text {
namespace {

using namespace std::string_view_literals;

TEST(Character, IsOfAWordWhenItIsALetterADigitOrAMark) {
  for (const char32_t character :
       U"azAZ09\u00E9\u00DF\u0301\u0660\u00BD\u2167\u4E2D\u3042\uAC00\U0001D400"sv) {
    EXPECT_TRUE(isWordCharacter(character)) << static_cast<std::uint32_t>(character);
  }
  for (const char32_t character :
       U" \n\0_-./@[`{\x7F\u00A0\u2014\u20AC\u3002\u200B\uFEFF\uFFFD\U0001F600"sv) {
    EXPECT_FALSE(isWordCharacter(character)) << static_cast<std::uint32_t>(character);
  }
}

TEST(Character, IsOfAScriptThatIsTakenInPairs) {
  struct Case {
    std::u32string_view characters;
    PairedScript script;
  };
  for (const Case& one :
       {Case{U"\u3005\u3007\u3400\u4DBF\u4E00\u9FFF\uF900\U00020000"sv, PairedScript::han},
        {U"\u3041\u3096"sv, PairedScript::hiragana},
        {U"\u30A1\u30FA\u30FC\u30FF\u31F0\uFF71"sv, PairedScript::katakana},
        {U"\uAC00\uD7A3\u1100\u3131"sv, PairedScript::hangul},
        {U"\u0E01\u0E31\u0E59\u0E81\u1000\u102B\u1780\u17B6"sv, PairedScript::alphabet},
        {U"a\u00E9\u0915\u093F\u3004\u3008\u3040\u3100\u30FB\u4DC0\uA000\u0E3F\U0001F600"sv,
         PairedScript::none}}) {
    for (const char32_t character : one.characters) {
      EXPECT_EQ(pairedScript(character), one.script) << static_cast<std::uint32_t>(character);
    }
  }
}

TEST(Character, OfHangulStandsInWordsWithSpaces) {
  EXPECT_FALSE(isUnspacedScript(U'\uAC00'));
  EXPECT_FALSE(isUnspacedScript(U'a'));
  EXPECT_FALSE(isUnspacedScript(U'\u30FB'));
  EXPECT_TRUE(isUnspacedScript(U'\u4E00'));
  EXPECT_TRUE(isUnspacedScript(U'\u0E01'));
}

TEST(Character, HasALowerCaseFormOrIsItself) {
  EXPECT_EQ(lowered(U'A'), U'a');
  EXPECT_EQ(lowered(U'\u00C9'), U'\u00E9');
  EXPECT_EQ(lowered(U'\u0416'), U'\u0436');
  for (const char32_t character : U"az09_\u00E9\u4E2D\U0001F600"sv) {
    EXPECT_EQ(lowered(character), character);
  }
}

TEST(Character, IsInvisibleAsATagAlsoWhereUnicodeHasNoneYet) {
  for (const char32_t tag : {U'\U000E0001', U'\U000E0002', U'\U000E0020', U'\U000E007F'}) {
    EXPECT_EQ(categoryOf(tag), Category::format) << std::hex << static_cast<std::uint32_t>(tag);
  }
  EXPECT_EQ(categoryOf(U'\U000E0100'), Category::mark) << "a variation selector";
}

TEST(Character, IsInvisibleAsAFiller) {
  for (const char32_t filler : U"\u034F\u115F\u1160\u17B5\u3164\uFFA0\uFFF8\U000E0FFF"sv) {
    EXPECT_EQ(categoryOf(filler), Category::format)
        << std::hex << static_cast<std::uint32_t>(filler);
  }
  for (const char32_t seen : U"\u0350\u115E\u1161\u3163\uFFA1"sv) {
    EXPECT_NE(categoryOf(seen), Category::format) << std::hex << static_cast<std::uint32_t>(seen);
  }
}

}  // namespace
}  // namespace quillstead::Text
