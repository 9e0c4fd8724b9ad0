#include "support/Text/Character.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>

namespace quillstead::Text {

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr std::array<Range, 7> ideographs{{
    {0x3005, 0x3007},    // iteration marks and zero
    {0x3041, 0x30FF},    // Hiragana, Katakana
    {0x31F0, 0x31FF},    // small Katakana
    {0x3400, 0x4DBF},    // Han
    {0x4E00, 0x9FFF},    // Han
    {0xF900, 0xFAFF},    // Han, for compatibility
    {0x20000, 0x3FFFF},  // Han, the later planes
}};

}  // namespace

bool isWordCharacter(char32_t character) {
  if (character < 0x80) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z');
  }
  const auto category = utf8proc_category(static_cast<utf8proc_int32_t>(character));
  return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO;
}

bool isIdeograph(char32_t character) {
  if (character < ideographs.front().first) return false;
  return std::any_of(ideographs.begin(), ideographs.end(), [character](const Range& range) {
    return character >= range.first && character <= range.last;
  });
}

char32_t lowered(char32_t character) {
  return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(character)));
}

}  // namespace quillstead::Text
