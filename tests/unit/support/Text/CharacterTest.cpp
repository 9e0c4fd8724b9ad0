#include "support/Text/Character.h"

#include <gtest/gtest.h>

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

TEST(Character, IsAnIdeographInHanAndTheTwoKana) {
  for (const char32_t character :
       U"\u3005\u3007\u3041\u30FF\u31F0\u3400\u4DBF\u4E00\u9FFF\uF900\U00020000\U0003FFFF"sv) {
    EXPECT_TRUE(isIdeograph(character)) << static_cast<std::uint32_t>(character);
  }
  for (const char32_t character :
       U"a\u00E9\u3004\u3008\u3040\u3100\u4DC0\uA000\uAC00\U0001F600"sv) {
    EXPECT_FALSE(isIdeograph(character)) << static_cast<std::uint32_t>(character);
  }
}

TEST(Character, HasALowerCaseFormOrIsItself) {
  EXPECT_EQ(lowered(U'A'), U'a');
  EXPECT_EQ(lowered(U'\u00C9'), U'\u00E9');
  EXPECT_EQ(lowered(U'\u0416'), U'\u0436');
  for (const char32_t character : U"az09_\u00E9\u4E2D\U0001F600"sv) {
    EXPECT_EQ(lowered(character), character);
  }
}

}  // namespace
}  // namespace quillstead::Text
