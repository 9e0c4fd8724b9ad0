#include "support/JSON/Writer.h"

#include "support/Text/Text.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

namespace quillstead::JSON {

namespace {

bool isASCII(char character) { return static_cast<unsigned char>(character) < 0x80; }

// Eight bytes of a text are looked at in one word: the first that has its top bit set in the result
// is the first special one. (Those behind it may be set without being special.)
using Word = std::uint64_t;
static_assert(std::endian::native == std::endian::little, "the first byte is the lowest");

constexpr Word inEveryByte(char byte) {
  return static_cast<Word>(static_cast<unsigned char>(byte)) * 0x0101'0101'0101'0101;
}

constexpr Word below(Word word, char limit) { return (word - inEveryByte(limit)) & ~word; }

constexpr Word equal(Word word, char byte) { return below(word ^ inEveryByte(byte), 1); }

constexpr Word specialBytes(Word word, char escapedSlash) {
  const Word found =
      word | below(word, ' ') | equal(word, '"') | equal(word, '\\') | equal(word, escapedSlash);
  return found & inEveryByte('\x80');
}

std::size_t firstByte(Word marked) {
  return static_cast<std::size_t>(std::countr_zero(marked)) / 8;
}

class Writer {
 public:
  Writer(Slashes slashes, std::string reused)
      : escapedSlash_(slashes == Slashes::escaped ? '/' : '"'), out_(std::move(reused)) {
    out_.clear();
  }

  std::string take() { return std::move(out_); }

  void write(const Value& value) {
    if (const std::string* text = value.text()) return writeText(*text);
    if (const Object* object = value.object()) return writeObject(*object);
    if (const Array* array = value.array()) return writeArray(*array);
    if (const Number* number = value.number()) return void(out_ += number->text());
    if (const bool* boolean = value.boolean()) return void(out_ += *boolean ? "true" : "false");
    out_ += "null";
  }

 private:
  void writeObject(const Object& object) {
    char separator = '{';
    for (const Member& member : object.members()) {
      out_ += separator;
      writeText(member.key);
      out_ += ':';
      write(member.value);
      separator = ',';
    }
    out_ += object.empty() ? "{}" : "}";
  }

  void writeArray(const Array& array) {
    char separator = '[';
    for (const Value& element : array) {
      out_ += separator;
      write(element);
      separator = ',';
    }
    out_ += array.empty() ? "[]" : "]";
  }

  void writeText(std::string_view text) {
    out_ += '"';
    while (!text.empty()) {
      const std::size_t run = plainRun(text);
      out_ += text.substr(0, run);
      text.remove_prefix(run);
      if (!text.empty()) text.remove_prefix(writeSpecial(text));
    }
    out_ += '"';
  }

  /// How many bytes at the start of `text` stand in a document as they are.
  [[nodiscard]] std::size_t plainRun(std::string_view text) const {
    std::size_t run = 0;
    for (; text.size() - run >= sizeof(Word); run += sizeof(Word)) {
      Word word = 0;
      std::memcpy(&word, text.data() + run, sizeof(Word));
      const Word special = specialBytes(word, escapedSlash_);
      if (special != 0) return run + firstByte(special);
    }
    while (run < text.size() && !isSpecial(text[run])) ++run;
    return run;
  }

  [[nodiscard]] bool isSpecial(char byte) const {
    return byte < ' ' || byte == '"' || byte == '\\' || byte == escapedSlash_ || !isASCII(byte);
  }

  /// Writes the character that `text` begins with and gives the number of bytes it took there.
  std::size_t writeSpecial(std::string_view text) {
    if (isASCII(text.front())) {
      writeEscape(text.front());
      return 1;
    }
    const Text::Decoded decoded = Text::decodeFirst(text);
    out_ += decoded.valid ? text.substr(0, decoded.length) : Text::replacementCharacter;
    return decoded.length;
  }

  void writeEscape(char character) {
    switch (character) {
      case '\b':
        out_ += "\\b";
        return;
      case '\f':
        out_ += "\\f";
        return;
      case '\n':
        out_ += "\\n";
        return;
      case '\r':
        out_ += "\\r";
        return;
      case '\t':
        out_ += "\\t";
        return;
      case '"':
      case '\\':
      case '/':
        out_ += '\\';
        out_ += character;
        return;
      default: {
        constexpr std::string_view digits = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(character);
        out_ += "\\u00";
        out_ += digits[byte >> 4U];
        out_ += digits[byte & 0xFU];
      }
    }
  }

  char escapedSlash_;  ///< a slash when it is escaped, else a character that always is
  std::string out_;
};

}  // namespace

std::string write(const Value& value, Slashes slashes, std::string reused) {
  Writer writer(slashes, std::move(reused));
  writer.write(value);
  return writer.take();
}

}  // namespace quillstead::JSON
