#pragma once

/// What Unicode says of one character.
namespace quillstead::Text {

/// A letter, a digit or other number, or a mark that belongs to the letter before it.
bool isWordCharacter(char32_t character);

/// A character of a script that is written without spaces between its words: Han, Hiragana,
/// Katakana.
bool isIdeograph(char32_t character);

/// Its lower-case form, or the character itself.
char32_t lowered(char32_t character);

}  // namespace quillstead::Text
