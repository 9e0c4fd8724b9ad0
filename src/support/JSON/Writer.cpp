#include "support/JSON/Writer.h"

#include "support/OS/LargeMemory.h"
#include "support/Text/Blocks.h"
#include "support/Text/Text.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace quillstead::JSON {

namespace {

bool isASCII(char character) { return static_cast<unsigned char>(character) < 0x80; }

/// Appends to a string through a small buffer, so that many short pieces need few calls of the
/// library.
class Appender {
 public:
  explicit Appender(std::string& text) : text_(text) {}

  Appender& operator+=(char byte) {
    if (used_ == buffer_.size()) flush();
    buffer_[used_++] = byte;
    return *this;
  }

  /// Both bytes, for less than a call for each.
  void appendPair(char first, char second) {
    if (buffer_.size() - used_ < 2) flush();
    buffer_[used_] = first;
    buffer_[used_ + 1] = second;
    used_ += 2;
  }

  Appender& operator+=(std::string_view bytes) {
    if (bytes.size() > buffer_.size() - used_) flush();
    if (bytes.size() > buffer_.size()) {
      text_.append(bytes);
    } else {
      bytes.copy(buffer_.data() + used_, bytes.size());
      used_ += bytes.size();
    }
    return *this;
  }

  /// Appends the bytes at the start of `source` before the first one that is found, and gives their
  /// number; see `Text::Blocks::bytesBefore`, and `longText` for `isLong`.
  template <bool isLong = false, typename Test>
  std::size_t appendBefore(std::string_view source, Test found) {
    std::size_t before = 0;
    for (;;) {
      if (wholeBlocksLeft() == 0) flush();
      const std::string_view part = source.substr(before, wholeBlocksLeft());
      char* const to = buffer_.data() + used_;
      const std::size_t count = isLong ? Text::Blocks::copyLongBefore(part, to, found)
                                       : Text::Blocks::copyBefore(part, to, found);
      used_ += count;
      before += count;
      if (count < part.size() || before == source.size()) return before;
    }
  }

  /// Flushes the buffer. The string is complete only after this.
  void end() { flush(); }

 private:
  [[nodiscard]] std::size_t wholeBlocksLeft() const {
    constexpr std::size_t block = sizeof(Text::Blocks::Block);
    return (buffer_.size() - used_) / block * block;
  }

  void flush() {
    OS::makeRoom(text_, used_);
    text_.append(buffer_.data(), used_);
    used_ = 0;
  }

  std::string& text_;
  std::size_t used_ = 0;
  std::array<char, 4096> buffer_;
};

class Writer {
 public:
  Writer(Slashes slashes, std::string reused)
      : escapedSlash_(slashes == Slashes::escaped ? '/' : '"'), document_(std::move(reused)) {
    document_.clear();
  }

  std::string take() {
    out_.end();
    return std::move(document_);
  }

  void write(const Value& value) {
    if (const View* part = value.part()) return writeContent(*part);
    if (const JoinedString* joined = value.joinedString()) return writeJoinedString(*joined);
    writeContent(value);
  }

  void write(View value) { writeContent(value); }

 private:
  /// For a `Value` or a `View`; both have the same functions.
  template <typename AnyValue>
  void writeContent(const AnyValue& value) {
    if (const auto string = value.string()) return writeString(*string);
    if (const auto object = value.object()) return writeObject(*object);
    if (const auto array = value.array()) return writeArray(*array);
    if (const auto number = value.number()) return void(out_ += number->text());
    if (const auto boolean = value.boolean()) return void(out_ += *boolean ? "true" : "false");
    out_ += "null";
  }

  template <typename AnyObject>
  void writeObject(const AnyObject& object) {
    char separator = '{';
    for (const auto& member : object.members()) {
      out_ += separator;
      writeString(member.key);
      out_ += ':';
      write(member.value);
      separator = ',';
    }
    out_ += object.empty() ? "{}" : "}";
  }

  template <typename AnyArray>
  void writeArray(const AnyArray& array) {
    char separator = '[';
    for (const auto& element : array) {
      out_ += separator;
      write(element);
      separator = ',';
    }
    out_ += array.empty() ? "[]" : "]";
  }

  void writeString(std::string_view string) {
    out_ += '"';
    writeCharacters(string);
    out_ += '"';
  }

  void writeJoinedString(const JoinedString& string) {
    out_ += '"';
    writeCharacters(string.first);
    writeCharacters(string.second);
    out_ += '"';
  }

  void writeCharacters(std::string_view text) {
    if (text.size() >= Text::Blocks::longText) return writeLongCharacters(text);
    writeEach<false>(text);
  }

  [[gnu::noinline]] void writeLongCharacters(std::string_view text) { writeEach<true>(text); }

  template <bool isLong>
  [[gnu::always_inline]] void writeEach(std::string_view text) {
    const auto areSpecial = [slash = escapedSlash_](Text::Blocks::Block bytes) {
      using Text::Blocks::Byte;
      return (bytes < Byte{' '}) | (bytes == Byte{'"'}) | (bytes == Byte{'\\'}) | (bytes == slash) |
             (bytes >= Byte{0x80});
    };
    for (;;) {
      text.remove_prefix(out_.appendBefore<isLong>(text, areSpecial));
      if (text.empty()) return;
      text.remove_prefix(writeSpecial(text));
    }
  }

  /// Writes the first character of `text` and returns its size in bytes.
  std::size_t writeSpecial(std::string_view text) {
    if (isASCII(text.front())) {
      writeEscape(text.front());
      return 1;
    }
    const Text::Decoded decoded = Text::decodeFirst(text);
    out_ += decoded.valid ? text.substr(0, decoded.length) : Text::replacementCharacter;
    return decoded.length;
  }

  /// Without `memcpy`: a call of it costs more than the text between two escapes.
  void writeEscape(char character) {
    switch (character) {
      case '\b':
        return out_.appendPair('\\', 'b');
      case '\f':
        return out_.appendPair('\\', 'f');
      case '\n':
        return out_.appendPair('\\', 'n');
      case '\r':
        return out_.appendPair('\\', 'r');
      case '\t':
        return out_.appendPair('\\', 't');
      case '"':
      case '\\':
      case '/':
        return out_.appendPair('\\', character);
      default: {
        constexpr std::string_view digits = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(character);
        out_ += "\\u00";
        out_ += digits[byte >> 4U];
        out_ += digits[byte & 0xFU];
      }
    }
  }

  Text::Blocks::Byte
      escapedSlash_;  ///< a slash when it is escaped, else a character that always is
  std::string document_;
  Appender out_{document_};
};

}  // namespace

std::string write(const Value& value, Slashes slashes, std::string reused) {
  Writer writer(slashes, std::move(reused));
  writer.write(value);
  return writer.take();
}

}  // namespace quillstead::JSON
