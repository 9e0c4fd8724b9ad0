#include "support/JSON/Reader.h"

#include "support/JSON/Encoding.h"
#include "support/OS/LargeMemory.h"
#include "support/Text/Blocks.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>
#include <vector>

namespace quillstead::JSON {

namespace {

/// Whether a byte has a special meaning in a string. No function, so that what takes it calls none.
constexpr auto areNotPlain = [](Text::Blocks::Block bytes) {
  using Text::Blocks::Byte;
  return (bytes < Byte{' '}) | (bytes == Byte{'"'}) | (bytes == Byte{'\\'}) | (bytes >= Byte{0x80});
};

bool isWhiteSpace(char byte) {
  return byte <= ' ' && (byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t');
}

/// Room for the strings of a document, and for a usual number of values and members. More of them
/// get blocks of their own.
std::size_t usualMemory(std::size_t documentSize) {
  constexpr std::size_t most = 4U << 20U;
  constexpr std::size_t least = 512;
  return documentSize + std::clamp(3 * documentSize, least, most);
}

/// Parses a document from start to end. Each method consumes what it is named after and returns it,
/// or true. It returns absent or false after a mismatch; the parser's state is then undefined.
/// What is rare in a payload is kept out of line, so that the rest saves few registers.
class Parser {
 public:
  Parser(std::string_view document, std::size_t mostValues)
      : next_(document.data()),
        end_(next_ + document.size()),
        memory_(usualMemory(document.size())),
        // No string is longer than its JSON text.
        strings_(static_cast<char*>(memory_.take(document.size() + sizeof(Text::Blocks::Block)))),
        valuesLeft_(mostValues) {
    members_.reserve(usualMembers);
    elements_.reserve(std::min(document.size() / bytesPerElement, mostReserved));
    OS::preferLargePages(std::as_writable_bytes(std::span(elements_.data(), elements_.capacity())));
  }

  std::optional<Document> document() {
    skipWhiteSpace();
    if (!startsWith('{') && !startsWith('[')) return std::nullopt;
    const View root = any();
    skipWhiteSpace();
    if (!root.exists() || next_ != end_) return std::nullopt;
    return Document(std::move(memory_), root);
  }

 private:
  View any() {
    if (next_ == end_ || valuesLeft_-- == 0) return {};
    switch (*next_) {
      case '{':
        return object();
      case '[':
        return array();
      case '"':
        return string();
      case 't':
        return skip("true") ? View(true) : View();
      case 'f':
        return skip("false") ? View(false) : View();
      case 'n':
        return skip("null") ? View(nullptr) : View();
      default:
        return number();
    }
  }

  View object() {
    if (depth_++ == maximumDepth) return {};
    const std::size_t first = members_.size();
    skip('{');
    skipWhiteSpace();
    if (!skip('}')) {
      do {
        if (!member()) return {};
      } while (skip(','));
      if (!skip('}')) return {};
    }
    --depth_;
    const std::span<MemberView> read = std::span(members_).subspan(first);
    const std::span<const MemberView> members = read.first(dropRepeatedKeys(read));
    const ObjectView object(memory_.copy(members));
    members_.resize(first);
    return View(object);
  }

  bool member() {
    skipWhiteSpace();
    if (valuesLeft_-- == 0) return false;
    const std::optional<std::string_view> key = string().string();
    skipWhiteSpace();
    if (!key || !skip(':')) return false;
    const View value = element();
    members_.push_back({*key, value});
    return value.exists();
  }

  [[gnu::noinline]] View array() {
    if (depth_++ == maximumDepth) return {};
    const std::size_t first = elements_.size();
    skip('[');
    skipWhiteSpace();
    if (!skip(']')) {
      do {
        const View value = element();
        if (!value.exists()) return {};
        elements_.push_back(value);
      } while (skip(','));
      if (!skip(']')) return {};
    }
    --depth_;
    const ArrayView array = memory_.copy(ArrayView(elements_).subspan(first));
    elements_.resize(first);
    return View(array);
  }

  /// A value with the white space around it.
  View element() {
    skipWhiteSpace();
    const View value = any();
    skipWhiteSpace();
    return value;
  }

  View string() {
    if (!skip('"')) return {};
    const char* const first = strings_;
    take(Text::Blocks::copyBefore(rest(), strings_, areNotPlain));
    if (!skip('"') && !specialCharacters()) return {};
    return View(std::string_view(first, strings_));
  }

  /// The rest of a string from a character on that is not plain, with the quote behind it.
  [[gnu::noinline]] bool specialCharacters() {
    do {
      if (!(startsWith('\\') ? escape() : characterBeyondASCII())) return false;
      take(Text::Blocks::copyLongBefore(rest(), strings_, areNotPlain));
    } while (!skip('"'));
    return true;
  }

  /// Goes on behind `count` bytes that have been copied.
  void take(std::size_t count) {
    next_ += count;
    strings_ += count;
  }

  bool characterBeyondASCII() {
    if (next_ == end_) return false;
    const Text::Decoded character = Text::decodeFirst(rest());
    if (!character.valid || character.character < 0x80) return false;
    append(rest().substr(0, character.length));
    next_ += character.length;
    return true;
  }

  void append(std::string_view bytes) {
    strings_ = std::copy(bytes.begin(), bytes.end(), strings_);
  }

  bool escape() {
    if (end_ - next_ < 2) return false;
    const char letter = next_[1];
    if (letter == 'u') return escapedCharacter();
    const char meaning = meaningOf(letter);
    if (meaning == 0) return false;
    *strings_++ = meaning;
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
    if (Surrogates::isHigh(character)) {
      std::uint32_t low = 0;
      if (!escapedUnit(low) || !Surrogates::isLow(low)) return false;
      character = Surrogates::joined(character, low);
    }
    std::string bytes;
    if (!Text::appendCharacter(bytes, character)) return false;
    append(bytes);
    return true;
  }

  bool escapedUnit(std::uint32_t& unit) {
    constexpr std::ptrdiff_t digits = 4;
    if (!skip("\\u") || end_ - next_ < digits) return false;
    const char* const first = next_;
    next_ += digits;
    return std::from_chars(first, next_, unit, 16).ptr == next_;
  }

  View number() {
    const char* const first = next_;
    skip('-');
    if (!skip('0') && !digits()) return {};
    if (skip('.') && !digits()) return {};
    if ((skip('e') || skip('E')) && !exponent()) return {};
    const char* const written = strings_;
    append({first, next_});
    return View(Number({written, strings_}));
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

  static constexpr std::size_t usualMembers = 16;
  static constexpr std::size_t bytesPerElement = 16;      ///< of arrays, in documents with many
  static constexpr std::size_t mostReserved = 4'000'000;  ///< untouched memory costs nothing

  const char* next_;
  const char* end_;
  Arena memory_;
  char* strings_;  ///< where the next string goes
  std::size_t depth_ = 0;
  std::size_t valuesLeft_;  ///< how many more values the document may hold, keys counted too
  std::vector<MemberView> members_;  ///< of the objects that are open
  std::vector<View> elements_;       ///< of the arrays that are open
};

}  // namespace

void Arena::add(std::size_t size) {
  // Not cleared, as make_unique would do.
  blocks_.push_back(std::unique_ptr<std::byte[]>(new std::byte[size]));
  left_ = {blocks_.back().get(), size};
  lastSize_ = size;
  OS::preferLargePages(left_);
}

std::optional<Document> read(std::string_view bytes, std::size_t mostValues) {
  const auto [encoding, markLength] = detectEncoding(bytes);
  bytes.remove_prefix(markLength);
  if (encoding == Encoding::utf8) return Parser(bytes, mostValues).document();

  const std::optional<std::string> utf8 = toUTF8(bytes, encoding);
  return utf8 ? Parser(*utf8, mostValues).document() : std::nullopt;
}

}  // namespace quillstead::JSON
