#include "server/Shown.h"

#include "support/Text/Character.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace quillstead::server::Shown {

namespace {

using Text::Category;
using Text::Decoded;

constexpr char32_t nonJoiner = 0x200C;
constexpr char32_t joiner = 0x200D;
constexpr std::string_view ellipsis = "…";

/// The most bytes of a text that a line is made from, so that an endless title costs nothing.
constexpr std::size_t mostLookedAt = 4'096;

/// The prefixes of our fences' names.
constexpr std::array<std::string_view, 2> fenceNames{"user-rules", "quillstead-"};

Decoded takeFirst(std::string_view& text) {
  const Decoded first = Text::decodeFirst(text);
  text.remove_prefix(first.length);
  return first;
}

/// True for characters that a reader does not see. Between "<" and a letter they do not stop a tag.
bool isUnseen(char32_t character) {
  const Category category = Text::categoryOf(character);
  const bool isSpace = character == '\t' || character == '\n';
  return category == Category::format || (category == Category::control && !isSpace) ||
         Text::isVariationSelector(character);
}

/// True for the line and the paragraph separator. What reads text line by line must see the lines
/// that a reader sees.
bool endsLine(char32_t character) { return character == 0x2028 || character == 0x2029; }

bool isSpace(char32_t character) {
  return character == '\t' || character == '\n' ||
         Text::categoryOf(character) == Category::whiteSpace;
}

bool isOpening(char32_t character) {
  constexpr char32_t small = 0xFE64;
  constexpr char32_t fullWidth = 0xFF1C;
  return character == '<' || character == small || character == fullWidth;
}

bool isSlash(char32_t character) {
  constexpr std::array<char32_t, 6> slashes{'/', '\\', 0x2044, 0x2215, 0x29F8, 0x2571};
  const char32_t plain = Text::plainForm(character);
  return std::find(slashes.begin(), slashes.end(), plain) != slashes.end();
}

/// True when `text` begins with the name of a fence, ignoring unseen characters and marks.
bool beginsWithFenceName(std::string_view text) {
  std::string folded;
  constexpr std::size_t longestName = 11;
  while (!text.empty() && folded.size() < longestName) {
    const char32_t character = takeFirst(text).character;
    if (isUnseen(character) || Text::categoryOf(character) == Category::mark) continue;
    Text::appendCharacter(folded, Text::lowered(Text::plainForm(character)));
  }
  return std::any_of(fenceNames.begin(), fenceNames.end(),
                     [&](std::string_view name) { return folded.starts_with(name); });
}

/// True when the text after a "<" could be a tag of ours.
bool isOurTag(std::string_view text) {
  while (!text.empty()) {
    const Decoded next = Text::decodeFirst(text);
    if (!isSpace(next.character) && !isSlash(next.character) && !isUnseen(next.character) &&
        Text::categoryOf(next.character) != Category::mark) {
      break;
    }
    text.remove_prefix(next.length);
  }
  return beginsWithFenceName(text);
}

/// The same for any tag.
bool isTag(std::string_view text) {
  bool afterSpace = false;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view here = rest;
    const char32_t character = takeFirst(rest).character;
    if (isUnseen(character)) continue;
    if (isSpace(character)) {
      afterSpace = true;
      continue;
    }
    if (isSlash(character)) return true;
    if (afterSpace) return beginsWithFenceName(here);
    constexpr std::string_view leads = "|!?_";
    if (character < 0x80) {
      return Text::categoryOf(character) == Category::letter ||
             leads.find(static_cast<char>(character)) != std::string_view::npos;
    }
    return !isOpening(character);  // whatever it is, it may look like a letter
  }
  return false;
}

/// Copies text character by character and drops what must not be shown.
class Writer {
 public:
  explicit Writer(std::size_t size) { result_.reserve(size); }

  /// `bytes`: the character's own; `rest`: what follows it.
  void add(const Decoded& next, std::string_view bytes, std::string_view rest) {
    if (!keeps(next.character, rest)) return;
    if (endsLine(next.character)) return addPlain("\n");
    if (isOpening(next.character) && isTag(rest)) return addPlain("&lt;");
    result_ += next.valid ? bytes : Text::replacementCharacter;
    previous_ = next.character;
  }

  /// Appends characters that need no check.
  void addPlain(std::string_view ascii) {
    if (ascii.empty()) return;
    result_ += ascii;
    previous_ = static_cast<unsigned char>(ascii.back());
  }

  std::string result() && { return std::move(result_); }

 private:
  [[nodiscard]] bool keeps(char32_t character, std::string_view rest) const {
    if (character == joiner || character == nonJoiner) return joins(character, rest);
    if (Text::isVariationSelector(character)) return selects(character);
    if (character == '\t' || character == '\n') return true;
    const Category category = Text::categoryOf(character);
    return category != Category::format && category != Category::control;
  }

  /// Only one joiner in a row does, since none takes joiners itself.
  [[nodiscard]] bool joins(char32_t character, std::string_view rest) const {
    if (Text::takesJoiners(previous_)) return true;
    const bool afterPicture =
        Text::isPicture(previous_) || isSkinTone(previous_) || Text::isVariationSelector(previous_);
    return character == joiner && afterPicture && !rest.empty() &&
           Text::isPicture(Text::decodeFirst(rest).character);
  }

  /// Only where there may be variants: else each letter could carry a hidden byte.
  [[nodiscard]] bool selects(char32_t character) const {
    constexpr char32_t firstOfHan = 0xE0100;
    constexpr std::string_view keys = "0123456789#*";
    if (Text::isVariationSelector(previous_)) return false;
    if (character >= firstOfHan) return Text::pairedScript(previous_) == Text::PairedScript::han;
    if (previous_ < 0x80) {
      const bool isKey = keys.find(static_cast<char>(previous_)) != std::string_view::npos;
      return isKey && (character == 0xFE0E || character == 0xFE0F);
    }
    return true;
  }

  static bool isSkinTone(char32_t character) {
    return character >= 0x1F3FB && character <= 0x1F3FF;
  }

  std::string result_;
  char32_t previous_ = 0;
};

/// The ASCII bytes that need no check, by their number.
constexpr std::array<bool, 256> plainBytes = [] {
  std::array<bool, 256> plain{};
  for (std::size_t byte = ' '; byte < 0x7F; ++byte) plain.at(byte) = byte != '<';
  plain['\n'] = true;
  return plain;
}();

/// The length of the beginning of `text` that needs no check.
std::size_t plainLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && plainBytes[static_cast<unsigned char>(text[length])]) ++length;
  return length;
}

/// True for words with single blanks between them, of bytes that need no check: most titles.
bool isPlainLine(std::string_view text) {
  char previous = ' ';
  for (const char byte : text) {
    const bool isGap = byte == ' ' && previous == ' ';
    if (isGap || byte == '\n' || !plainBytes[static_cast<unsigned char>(byte)]) return false;
    previous = byte;
  }
  return previous != ' ';
}

/// At most `limit` bytes of `text`, cut between code points.
std::string_view codePointsWithin(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text;
  while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0U) == 0x80) --limit;
  return text.substr(0, limit);
}

/// The same, cut between grapheme clusters, unless the first one alone is too long.
std::string_view charactersWithin(std::string_view text, std::size_t limit) {
  std::string_view kept;
  for (std::size_t count = 1; count <= limit; ++count) {
    const std::string_view more = Text::firstCharacters(text, count);
    if (more.size() > limit || more.size() == kept.size()) break;
    kept = more;
  }
  return kept.empty() ? codePointsWithin(text, limit) : kept;
}

struct Fence {
  std::string_view opening;
  std::string_view closing;
};

constexpr std::array<Fence, 4> fences{{
    {"<user-rules>", "</user-rules>"},
    {"<quillstead-memory>", "</quillstead-memory>"},
    {"<quillstead-shortcut>", "</quillstead-shortcut>"},
    {"<quillstead-now>", "</quillstead-now>"},
}};

/// The length of the block at the start of `text`; 0 when there is none.
std::size_t lengthOfBlock(std::string_view text) {
  for (const Fence& fence : fences) {
    if (!text.starts_with(fence.opening)) continue;
    const std::size_t end = text.find(fence.closing, fence.opening.size());
    return end == std::string_view::npos ? 0 : end + fence.closing.size();
  }
  return 0;
}

}  // namespace

std::string text(std::string_view text) {
  Writer writer(text.size());
  for (;;) {
    const std::size_t plain = plainLength(text);
    writer.addPlain(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    const std::string_view here = text;
    const Decoded next = takeFirst(text);
    writer.add(next, here.substr(0, next.length), text);
  }
  return std::move(writer).result();
}

std::string line(std::string_view text) {
  if (text.size() <= longestLine && isPlainLine(text)) return std::string(text);
  const std::string_view beginning = codePointsWithin(text, mostLookedAt);
  std::string whole = Shown::text(Text::onOneLine(beginning));
  if (whole.size() <= longestLine && beginning.size() == text.size()) return whole;
  return std::string(Text::trimmed(charactersWithin(whole, longestLine - ellipsis.size())))
      .append(ellipsis);
}

std::string escapeFences(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (;;) {
    const std::size_t plain = plainLength(text);
    result += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) break;
    const std::string_view here = text;
    const Decoded next = takeFirst(text);
    const bool isTag = isOpening(next.character) && isOurTag(text);
    result += isTag ? std::string_view("&lt;") : here.substr(0, next.length);
  }
  return result;
}

std::string withoutOwnBlocks(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t at = text.find('<');
    result += text.substr(0, at);
    if (at == std::string_view::npos) break;
    text.remove_prefix(at);
    const std::size_t length = lengthOfBlock(text);
    if (length == 0) result += '<';
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return result;
}

}  // namespace quillstead::server::Shown
