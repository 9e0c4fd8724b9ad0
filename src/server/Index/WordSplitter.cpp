#include "server/Index/WordSplitter.h"

#include "support/Text/Text.h"

#include <algorithm>
#include <array>
#include <string>

namespace quillstead::server::WordSplitter {

namespace {

using Take = std::function<void(const Word&)>;
using Text::PairedScript;

/// A longer chain of words is not one name.
constexpr std::size_t longestName = 64;

bool isUpper(char byte) { return byte >= 'A' && byte <= 'Z'; }
bool isLower(char byte) { return byte >= 'a' && byte <= 'z'; }
bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }
bool isASCII(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// The ASCII letters and digits, by their number.
constexpr std::array<bool, 256> plainBytes = [] {
  std::array<bool, 256> plain{};
  for (const char first : {'a', 'A'}) {
    for (char letter = 0; letter < 26; ++letter)
      plain.at(static_cast<std::size_t>(first + letter)) = true;
  }
  for (char digit = '0'; digit <= '9'; ++digit) plain.at(static_cast<std::size_t>(digit)) = true;
  return plain;
}();

bool isPlain(char byte) { return plainBytes[static_cast<unsigned char>(byte)]; }
bool isSign(char byte) { return byte == '_' || byte == '-' || byte == '.'; }

/// A name without any of these behind its first byte is one word.
bool mayDivide(char byte) { return isSign(byte) || isUpper(byte); }

/// Invisible characters. Some texts have them within words.
bool isInvisible(char32_t character) {
  return character == 0xAD || (character >= 0x200B && character <= 0x200D) || character == 0xFEFF;
}

/// Turns full-width Latin letters, digits and signs into ordinary ones.
char32_t withOrdinaryWidth(char32_t character) {
  constexpr char32_t firstWide = 0xFF01;
  constexpr char32_t lastWide = 0xFF5E;
  return character >= firstWide && character <= lastWide ? character - firstWide + U'!' : character;
}

/// True for texts that `ordinary` may change.
bool isUnusual(std::string_view text) {
  constexpr auto signs =
      std::to_array<std::string_view>({"\xC2\xAD", "\xE2\x80\x8B", "\xE2\x80\x8C", "\xE2\x80\x8D",
                                       "\xEF\xBB\xBF", "\xEF\xBC", "\xEF\xBD"});
  if (std::all_of(text.begin(), text.end(), isASCII)) return false;
  return std::any_of(signs.begin(), signs.end(), [text](std::string_view sign) {
    return text.find(sign) != std::string_view::npos;
  });
}

std::string ordinary(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const Text::Decoded next = Text::decodeFirst(text);
    text.remove_prefix(next.length);
    if (isInvisible(next.character)) continue;
    Text::appendCharacter(result, static_cast<std::uint32_t>(withOrdinaryWidth(next.character)));
  }
  return result;
}

/// The bytes of the first character of `text`, if it can be part of a word of a script with spaces;
/// else 0.
std::size_t spacedCharacter(std::string_view text) {
  if (text.empty()) return 0;
  if (isASCII(text[0])) return isPlain(text[0]) ? 1 : 0;
  const Text::Decoded next = Text::decodeFirst(text);
  const bool isOne = next.valid && Text::isWordCharacter(next.character) &&
                     Text::pairedScript(next.character) == PairedScript::none;
  return isOne ? next.length : 0;
}

std::size_t spacedWord(std::string_view text) {
  std::size_t length = 0;
  for (;;) {
    while (length < text.size() && isPlain(text[length])) ++length;
    const std::size_t next = spacedCharacter(text.substr(length));
    if (next == 0) return length;
    length += next;
  }
}

/// True when the sign joins the words around it to one name.
bool joins(char before, char sign, char after) {
  return sign == '_' || sign == '-' || (sign == '.' && isDigit(before) && isDigit(after));
}

/// The length of the word that begins `text`, with the words joined to it.
std::size_t nameLength(std::string_view text) {
  std::size_t length = spacedWord(text);
  while (length + 1 < text.size() && isSign(text[length])) {
    const std::size_t next = spacedWord(text.substr(length + 1));
    if (next == 0 || !joins(text[length - 1], text[length], text[length + 1])) break;
    length += 1 + next;
  }
  return length;
}

/// True when a part of a name written in CamelCase begins at `at`, which is not 0.
bool beginsPart(std::string_view word, std::size_t at) {
  if (!isUpper(word[at])) return false;
  if (!isASCII(word[at - 1])) return false;
  if (!isUpper(word[at - 1])) return true;
  const std::string_view rest = word.substr(at + 1);  // "HTTPServer" has two parts, "URLs" one
  return !rest.empty() && isLower(rest[0]) && rest != "s";
}

void giveParts(std::string_view word, const Take& take) {
  std::size_t begin = 0;
  for (std::size_t at = 1; at < word.size(); ++at) {
    if (!isUpper(word[at]) || !beginsPart(word, at)) continue;
    take({.text = word.substr(begin, at - begin), .kind = Word::Kind::part});
    begin = at;
  }
  if (begin > 0) take({.text = word.substr(begin), .kind = Word::Kind::part});
}

/// `name` without the signs that join its words. A number keeps its points.
std::string joined(std::string_view name) {
  std::string result(name);
  std::erase_if(result, [](char byte) { return byte == '_' || byte == '-'; });
  return result;
}

void giveName(std::string_view name, const Take& take) {
  if (std::none_of(name.begin() + 1, name.end(), mayDivide)) {
    take({.text = name});
    return;
  }
  if (std::none_of(name.begin(), name.end(), isSign)) {
    take({.text = name});
    giveParts(name, take);
    return;
  }
  if (name.size() <= longestName) take({.text = joined(name)});
  const bool isOneWord = name.find('_') != std::string_view::npos;
  while (!name.empty()) {
    const auto end =
        static_cast<std::size_t>(std::find_if(name.begin(), name.end(), isSign) - name.begin());
    const std::string_view word = name.substr(0, end);
    take({.text = word, .kind = isOneWord ? Word::Kind::part : Word::Kind::whole});
    giveParts(word, take);
    name.remove_prefix(std::min(end + 1, name.size()));
  }
}

/// True for scripts that are written together, in one run.
bool isSameRun(PairedScript one, PairedScript other) {
  const auto isAlone = [](PairedScript script) {
    return script == PairedScript::hangul || script == PairedScript::alphabet;
  };
  return one == other || (!isAlone(one) && !isAlone(other));
}

PairedScript scriptOf(Text::Decoded character) {
  return character.valid ? Text::pairedScript(character.character) : PairedScript::none;
}

/// The length of the run that begins `text`, of one script or of scripts that are written together;
/// 0 when there is none.
std::size_t runLength(std::string_view text) {
  std::size_t length = 0;
  PairedScript script = PairedScript::none;
  while (length < text.size()) {
    const Text::Decoded next = Text::decodeFirst(text.substr(length));
    const PairedScript nextScript = scriptOf(next);
    if (nextScript == PairedScript::none) break;
    if (length > 0 && !isSameRun(script, nextScript)) break;
    script = nextScript;
    length += next.length;
  }
  return length;
}

void giveRun(std::string_view run, const Take& take) {
  take({.text = run, .kind = Word::Kind::run});
  std::size_t begin = 0;
  Text::Decoded character = Text::decodeFirst(run);
  while (begin + character.length < run.size()) {
    const std::size_t middle = begin + character.length;
    const Text::Decoded next = Text::decodeFirst(run.substr(middle));
    take({.text = run.substr(begin, character.length + next.length),
          .kind = Word::Kind::pair,
          .script = scriptOf(character),
          .neighbour = scriptOf(next)});
    begin = middle;
    character = next;
  }
  take({.text = run.substr(begin),
        .kind = begin == 0 ? Word::Kind::only : Word::Kind::last,
        .script = scriptOf(character)});
}

}  // namespace

void split(std::string_view text, const Take& take) {
  std::string changed;
  if (isUnusual(text)) text = changed = ordinary(text);
  while (!text.empty()) {
    if (isASCII(text[0]) && !isPlain(text[0])) {
      text.remove_prefix(1);
    } else if (spacedCharacter(text) > 0) {
      const std::size_t length = nameLength(text);
      giveName(text.substr(0, length), take);
      text.remove_prefix(length);
    } else {
      const std::size_t length = runLength(text);
      if (length > 0) giveRun(text.substr(0, length), take);
      text.remove_prefix(length > 0 ? length : Text::decodeFirst(text).length);
    }
  }
}

}  // namespace quillstead::server::WordSplitter
