#include "support/Text/Category.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>

namespace quillstead::Text {

namespace {

struct Range {
  char32_t first;
  char32_t last;

  [[nodiscard]] bool holds(char32_t character) const {
    return character >= first && character <= last;
  }
};

template <std::size_t count>
bool isIn(const std::array<Range, count>& ranges, char32_t character) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [character](const Range& range) { return range.holds(character); });
}

constexpr Range tags{0xE0000, 0xE007F};

/// Blocks of scripts whose letters join or stack.
constexpr std::array<Range, 9> joiningScripts{{
    {0x0600, 0x08FF},    // Arabic, Syriac, Thaana, N'Ko, Mandaic
    {0x0900, 0x0DFF},    // the scripts of India, Sinhala
    {0x0F00, 0x109F},    // Tibetan, Myanmar
    {0x1780, 0x18AF},    // Khmer, Mongolian
    {0x1900, 0x1CFF},    // Limbu to Vedic
    {0xA800, 0xABFF},    // Syloti Nagri to Meetei Mayek
    {0xFB50, 0xFDFF},    // Arabic, for compatibility
    {0xFE70, 0xFEFE},    // Arabic, for compatibility
    {0x10A00, 0x11FFF},  // Kharoshthi to the newer scripts of India
}};

constexpr std::array<Range, 3> variationSelectors{{
    {0x180B, 0x180D},
    {0xFE00, 0xFE0F},
    {0xE0100, 0xE01EF},
}};

utf8proc_int32_t codePoint(char32_t character) { return static_cast<utf8proc_int32_t>(character); }

}  // namespace

Category categoryOf(char32_t character) {
  if (tags.holds(character)) return Category::format;
  const auto category = utf8proc_category(codePoint(character));
  if (category == UTF8PROC_CATEGORY_CC) return Category::control;
  if (category == UTF8PROC_CATEGORY_CF) return Category::format;
  if (category == UTF8PROC_CATEGORY_CN || category > UTF8PROC_CATEGORY_CF) return Category::other;
  if (category <= UTF8PROC_CATEGORY_LO) return Category::letter;
  if (category <= UTF8PROC_CATEGORY_ME) return Category::mark;
  if (category <= UTF8PROC_CATEGORY_NO) return Category::number;
  return category >= UTF8PROC_CATEGORY_ZS ? Category::whiteSpace : Category::sign;
}

bool isPicture(char32_t character) {
  const utf8proc_property_t* const property = utf8proc_get_property(codePoint(character));
  return property->boundclass == UTF8PROC_BOUNDCLASS_EXTENDED_PICTOGRAPHIC;
}

bool isVariationSelector(char32_t character) { return isIn(variationSelectors, character); }

bool takesJoiners(char32_t character) {
  if (!isIn(joiningScripts, character)) return false;
  const Category category = categoryOf(character);
  return category == Category::letter || category == Category::mark;
}

char32_t plainForm(char32_t character) {
  if (character < 0x80) return character;
  constexpr auto options = static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_COMPAT);
  std::array<utf8proc_int32_t, 2> parts{};
  int boundary = 0;
  const utf8proc_ssize_t count =
      utf8proc_decompose_char(codePoint(character), parts.data(), parts.size(), options, &boundary);
  return count == 1 ? static_cast<char32_t>(parts[0]) : character;
}

}  // namespace quillstead::Text
