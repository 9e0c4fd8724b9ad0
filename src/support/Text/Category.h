#pragma once

/// What kind of character Unicode says one is.
namespace quillstead::Text {

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
