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

}  // namespace quillstead::Text
