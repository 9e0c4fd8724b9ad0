#include "support/Text/Character.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>

namespace quillstead::Text {

namespace {

struct PairedRange {
  char32_t first;
  char32_t last;
  PairedScript script;
};

/// In their order. The middle dot U+30FB, which stands between words, is in none of them.
constexpr auto pairedRanges = std::to_array<PairedRange>({
    {0x0E00, 0x0EFF, PairedScript::alphabet},  // Thai, Lao
    {0x1000, 0x109F, PairedScript::alphabet},  // Burmese
    {0x1100, 0x11FF, PairedScript::hangul},    // its letters
    {0x1780, 0x17FF, PairedScript::alphabet},  // Khmer
    {0x3005, 0x3007, PairedScript::han},       // iteration marks and zero
    {0x3041, 0x309F, PairedScript::hiragana},
    {0x30A1, 0x30FA, PairedScript::katakana},
    {0x30FC, 0x30FF, PairedScript::katakana},
    {0x3131, 0x318E, PairedScript::hangul},    // its letters, for compatibility
    {0x31F0, 0x31FF, PairedScript::katakana},  // small ones
    {0x3400, 0x4DBF, PairedScript::han},
    {0x4E00, 0x9FFF, PairedScript::han},
    {0xA9E0, 0xA9FF, PairedScript::alphabet},  // Burmese, extended
    {0xAA60, 0xAA7F, PairedScript::alphabet},  // Burmese, extended
    {0xAC00, 0xD7FB, PairedScript::hangul},
    {0xF900, 0xFAFF, PairedScript::han},       // for compatibility
    {0xFF66, 0xFF9F, PairedScript::katakana},  // half as wide
    {0x20000, 0x3FFFF, PairedScript::han},     // the later planes
});

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

/// What Unicode lets a program show as nothing, and has among marks, letters or what is not
/// assigned.
constexpr std::array<Range, 9> unseen{{
    {0x034F, 0x034F},    // combining grapheme joiner
    {0x115F, 0x1160},    // fillers of Hangul
    {0x17B4, 0x17B5},    // vowels of Khmer
    {0x2065, 0x2065},    // not assigned
    {0x3164, 0x3164},    // filler of Hangul
    {0xFFA0, 0xFFA0},    // the same, half as wide
    {0xFFF0, 0xFFF8},    // not assigned
    {0xE0000, 0xE00FF},  // tags
    {0xE01F0, 0xE0FFF},  // not assigned
}};

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

constexpr std::array<Range, 4> variationSelectors{{
    {0x180B, 0x180D},
    {0x180F, 0x180F},
    {0xFE00, 0xFE0F},
    {0xE0100, 0xE01EF},
}};

utf8proc_int32_t codePoint(char32_t character) { return static_cast<utf8proc_int32_t>(character); }

}  // namespace

bool isWordCharacter(char32_t character) {
  if (character < 0x80) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z');
  }
  const auto category = utf8proc_category(codePoint(character));
  return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO;
}

PairedScript pairedScript(char32_t character) {
  if (character < pairedRanges.front().first) return PairedScript::none;
  const auto* const range =
      std::lower_bound(pairedRanges.begin(), pairedRanges.end(), character,
                       [](const PairedRange& one, char32_t wanted) { return one.last < wanted; });
  const bool found = range != pairedRanges.end() && character >= range->first;
  return found && isWordCharacter(character) ? range->script : PairedScript::none;
}

bool isUnspacedScript(char32_t character) {
  const PairedScript script = pairedScript(character);
  return script != PairedScript::none && script != PairedScript::hangul;
}

char32_t lowered(char32_t character) {
  return static_cast<char32_t>(utf8proc_tolower(codePoint(character)));
}

Category categoryOf(char32_t character) {
  if (isIn(unseen, character)) return Category::format;
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
