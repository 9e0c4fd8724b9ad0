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
constexpr auto ranges = std::to_array<PairedRange>({
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

}  // namespace

bool isWordCharacter(char32_t character) {
  if (character < 0x80) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z');
  }
  const auto category = utf8proc_category(static_cast<utf8proc_int32_t>(character));
  return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO;
}

PairedScript pairedScript(char32_t character) {
  if (character < ranges.front().first) return PairedScript::none;
  const auto* const range =
      std::lower_bound(ranges.begin(), ranges.end(), character,
                       [](const PairedRange& one, char32_t wanted) { return one.last < wanted; });
  const bool found = range != ranges.end() && character >= range->first;
  return found && isWordCharacter(character) ? range->script : PairedScript::none;
}

bool isUnspacedScript(char32_t character) {
  const PairedScript script = pairedScript(character);
  return script != PairedScript::none && script != PairedScript::hangul;
}

char32_t lowered(char32_t character) {
  return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(character)));
}

}  // namespace quillstead::Text
