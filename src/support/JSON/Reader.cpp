#include "support/JSON/Reader.h"

#include "support/JSON/Appender.h"
#include "support/JSON/Encoding.h"
#include "support/Text/Blocks.h"
#include "support/Text/Text.h"

#include <charconv>

namespace quillstead::JSON {

namespace {

/// Whether bytes mean something else in a document than themselves.
Text::Blocks::Block areSpecial(Text::Blocks::Block bytes) {
  using Text::Blocks::Byte;
  return (bytes < Byte{' '}) | (bytes == Byte{'"'}) | (bytes == Byte{'\\'}) | (bytes >= Byte{0x80});
}

bool isWhiteSpace(char byte) {
  return byte <= ' ' && (byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t');
}

/// Reads a document from its start to its end, once. Every operation takes what it is named for off
/// the rest of the document; false, with nothing to be trusted, when that is not what stands there.
class Parser {
 public:
  Parser(std::string_view document, std::size_t mostValues)
      : next_(document.data()), end_(next_ + document.size()), valuesLeft_(mostValues) {}

  bool document(Value& value) {
    skipWhiteSpace();
    if (!startsWith('{') && !startsWith('[')) return false;
    if (!any(value)) return false;
    skipWhiteSpace();
    return next_ == end_;
  }

 private:
  bool any(Value& value) {
    if (next_ == end_ || valuesLeft_-- == 0) return false;
    switch (*next_) {
      case '{':
        return object(value);
      case '[':
        return array(value);
      case '"':
        return text(value);
      case 't':
        value.emplace(true);
        return skip("true");
      case 'f':
        value.emplace(false);
        return skip("false");
      case 'n':
        value = Value(nullptr);
        return skip("null");
      default:
        return number(value);
    }
  }

  bool object(Value& value) {
    if (depth_++ == maximumDepth) return false;
    std::vector<Member> members;
    skip('{');
    skipWhiteSpace();
    if (!skip('}')) {
      members.reserve(usualMembers);
      do {
        if (!member(members.emplace_back())) return false;
      } while (skip(','));
      if (!skip('}')) return false;
    }
    --depth_;
    value.emplace(Object(std::move(members)));
    return true;
  }

  bool member(Member& member) {
    skipWhiteSpace();
    if (valuesLeft_-- == 0 || !text(member.key)) return false;
    skipWhiteSpace();
    return skip(':') && element(member.value);
  }

  bool array(Value& value) {
    if (depth_++ == maximumDepth) return false;
    Array elements;
    skip('[');
    skipWhiteSpace();
    if (!skip(']')) {
      do {
        if (!element(elements.emplace_back())) return false;
      } while (skip(','));
      if (!skip(']')) return false;
    }
    --depth_;
    value.emplace(std::move(elements));
    return true;
  }

  /// A value with the white space around it.
  bool element(Value& value) {
    skipWhiteSpace();
    if (!any(value)) return false;
    skipWhiteSpace();
    return true;
  }

  bool text(Value& value) { return text(value.emplace(std::string())); }

  bool text(std::string& decoded) {
    if (!skip('"')) return false;
    decoded_.begin(decoded, rest().size());
    plainCharacters();
    while (!skip('"')) {
      if (!(startsWith('\\') ? escape() : characterBeyondASCII())) return false;
      plainCharacters();
    }
    decoded_.end();
    return true;
  }

  void plainCharacters() { next_ += decoded_.appendBefore(rest(), areSpecial); }

  bool characterBeyondASCII() {
    if (next_ == end_) return false;
    const Text::Decoded character = Text::decodeFirst(rest());
    if (!character.valid || character.character < 0x80) return false;
    decoded_ += rest().substr(0, character.length);
    next_ += character.length;
    return true;
  }

  bool escape() {
    if (end_ - next_ < 2) return false;
    const char letter = next_[1];
    if (letter == 'u') return escapedCharacter();
    const char meaning = meaningOf(letter);
    if (meaning == 0) return false;
    decoded_ += meaning;
    next_ += 2;
    return true;
  }

  /// Of a letter behind a backslash; 0 when it has none.
  static char meaningOf(char letter) {
    switch (letter) {
      case 'b':
        return '\b';
      case 'f':
        return '\f';
      case 'n':
        return '\n';
      case 'r':
        return '\r';
      case 't':
        return '\t';
      case '"':
      case '\\':
      case '/':
        return letter;
      default:
        return 0;
    }
  }

  /// Of a character beyond U+FFFF both halves.
  bool escapedCharacter() {
    std::uint32_t character = 0;
    if (!escapedUnit(character)) return false;
    if (character >= 0xD800 && character <= 0xDBFF) {
      std::uint32_t low = 0;
      if (!escapedUnit(low) || low < 0xDC00 || low > 0xDFFF) return false;
      character = 0x10000 + ((character - 0xD800) << 10U) + (low - 0xDC00);
    }
    std::string bytes;
    if (!Text::appendCharacter(bytes, character)) return false;
    decoded_ += bytes;
    return true;
  }

  bool escapedUnit(std::uint32_t& unit) {
    constexpr std::ptrdiff_t digits = 4;
    if (!skip("\\u") || end_ - next_ < digits) return false;
    const char* const first = next_;
    next_ += digits;
    return std::from_chars(first, next_, unit, 16).ptr == next_;
  }

  bool number(Value& value) {
    const char* const first = next_;
    skip('-');
    if (!skip('0') && !digits()) return false;
    if (skip('.') && !digits()) return false;
    if ((skip('e') || skip('E')) && !exponent()) return false;
    value.emplace(Number::fromText(std::string(first, next_)));
    return true;
  }

  bool exponent() {
    if (!skip('+')) skip('-');
    return digits();
  }

  bool digits() {
    const char* const first = next_;
    while (next_ != end_ && *next_ >= '0' && *next_ <= '9') ++next_;
    return next_ != first;
  }

  void skipWhiteSpace() {
    while (next_ != end_ && isWhiteSpace(*next_)) ++next_;
  }

  bool skip(char byte) {
    if (!startsWith(byte)) return false;
    ++next_;
    return true;
  }

  bool skip(std::string_view word) {
    if (!rest().starts_with(word)) return false;
    next_ += word.size();
    return true;
  }

  [[nodiscard]] bool startsWith(char byte) const { return next_ != end_ && *next_ == byte; }
  [[nodiscard]] std::string_view rest() const { return {next_, end_}; }

  static constexpr std::size_t usualMembers = 4;

  const char* next_;
  const char* end_;
  std::size_t depth_ = 0;
  Appender decoded_;        ///< takes the text that is being read
  std::size_t valuesLeft_;  ///< how many more values the document may hold, keys counted too
};

std::optional<Value> readUTF8(std::string_view bytes, std::size_t mostValues) {
  std::optional<Value> value(std::in_place);
  if (!Parser(bytes, mostValues).document(*value)) value.reset();
  return value;
}

}  // namespace

std::optional<Value> read(std::string_view bytes, std::size_t mostValues) {
  const auto [encoding, markLength] = detectEncoding(bytes);
  bytes.remove_prefix(markLength);
  if (encoding == Encoding::utf8) return readUTF8(bytes, mostValues);

  const std::optional<std::string> utf8 = toUTF8(bytes, encoding);
  return utf8 ? readUTF8(*utf8, mostValues) : std::nullopt;
}

}  // namespace quillstead::JSON
