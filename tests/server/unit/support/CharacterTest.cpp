#include "support/Text/Character.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace quillstead {

namespace {

TEST(Character, TellsWordsFromSigns) {
  for (const char32_t character :
       {U'a', U'Z', U'7', U'é', U'ß', U'я', U'語', U'あ', U'\u0301', U'½'}) {
    EXPECT_TRUE(Text::isWordCharacter(character)) << static_cast<std::uint32_t>(character);
  }
  for (const char32_t character :
       {U' ', U'-', U'_', U'.', U'…', U'\u00A0', U'😀', U'\0', U'\uFFFD'}) {
    EXPECT_FALSE(Text::isWordCharacter(character)) << static_cast<std::uint32_t>(character);
  }
}

TEST(Character, KnowsScriptsWithoutBlanks) {
  for (const char32_t character : {U'語', U'あ', U'ア', U'々', U'\U00020000'}) {
    EXPECT_TRUE(Text::isIdeograph(character));
  }
  for (const char32_t character : {U'a', U'é', U'한', U'。', U'😀'}) {
    EXPECT_FALSE(Text::isIdeograph(character));
  }
}

TEST(Character, Lowers) {
  EXPECT_EQ(Text::lowered(U'Ä'), U'ä');
  EXPECT_EQ(Text::lowered(U'Я'), U'я');
  EXPECT_EQ(Text::lowered(U'語'), U'語');
}

}  // namespace

}  // namespace quillstead
