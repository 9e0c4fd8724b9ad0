#pragma once

/// What Unicode says of one character.
namespace quillstead::Text {

/// A letter, a digit or other number, or a mark that belongs to the letter before it.
bool isWordCharacter(char32_t character);

/// The scripts whose words cannot be told apart by spaces, or (Hangul) not well.
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

/// Its lower-case form, or the character itself.
char32_t lowered(char32_t character);

/// What kind of character Unicode says one is.
enum class Category {
  letter,
  mark,  ///< belongs to the character before it
  number,
  sign,  ///< punctuation and symbols
  whiteSpace,
  control,  ///< tab and line ends included
  format,   ///< invisible, it changes how others are shown; all tag characters are such
  other,    ///< private or not assigned
};

Category categoryOf(char32_t character);

/// A picture, such as an emoji, that can be joined with others to one.
bool isPicture(char32_t character);

/// One of the characters that choose how the one before them is drawn.
bool isVariationSelector(char32_t character);

/// A letter or mark of a script in which an invisible joiner can change what a word says, such as
/// Arabic, Devanagari or Khmer.
bool takesJoiners(char32_t character);

/// The plain form of a character that is a wide, narrow or styled variant of one other; else the
/// character itself.
char32_t plainForm(char32_t character);

}  // namespace quillstead::Text
