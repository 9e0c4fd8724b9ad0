#pragma once

/// Unicode properties of a character.
namespace quillstead::Text {

/// A letter, a digit or other number, or a mark that belongs to the letter before it.
bool isWordCharacter(char32_t character);

/// Scripts that do not separate words by spaces, or (Hangul) not reliably.
enum class PairedScript {
  none,
  han,
  hiragana,
  katakana,
  hangul,
  alphabet,  ///< Thai, Lao, Khmer, Burmese
};

PairedScript pairedScript(char32_t character);

/// A character of a script that is written without spaces between its words.
bool isUnspacedScript(char32_t character);

/// The lower-case form, or the character itself.
char32_t lowered(char32_t character);

/// The Unicode category of a character.
enum class Category {
  letter,
  mark,  ///< belongs to the character before it
  number,
  sign,  ///< punctuation and symbols
  whiteSpace,
  control,  ///< tab and line ends included
  format,   ///< invisible. Includes all tag characters and fillers
  other,    ///< private or not assigned
};

Category categoryOf(char32_t character);

/// A pictograph, such as an emoji, that can be joined with others into one.
bool isPicture(char32_t character);

/// A variation selector: it chooses how the character before it is drawn.
bool isVariationSelector(char32_t character);

/// A letter or mark of a script in which an invisible joiner can change what a word says, such as
/// Arabic, Devanagari or Khmer.
bool takesJoiners(char32_t character);

/// The plain form of a character that is a wide, narrow or styled variant of one other; else the
/// character itself.
char32_t plainForm(char32_t character);

}  // namespace quillstead::Text
