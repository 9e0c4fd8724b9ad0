#include "support/JSON/Writer.h"

#include "support/Text/Text.h"

#include <array>

namespace quillstead::JSON {

namespace {

/// What a byte of a text needs when it is written.
enum class Treatment : unsigned char { copied, escaped, checked };

using Treatments = std::array<Treatment, 256>;

constexpr Treatments treatmentsFor(Slashes slashes) {
  Treatments table{};
  for (std::size_t byte = 0; byte < 0x20; ++byte) table[byte] = Treatment::escaped;
  table['"'] = Treatment::escaped;
  table['\\'] = Treatment::escaped;
  if (slashes == Slashes::escaped) table['/'] = Treatment::escaped;
  for (std::size_t byte = 0x80; byte < 0x100; ++byte) table[byte] = Treatment::checked;
  return table;
}

constexpr Treatments plainSlashes = treatmentsFor(Slashes::plain);
constexpr Treatments escapedSlashes = treatmentsFor(Slashes::escaped);

class Writer {
 public:
  explicit Writer(Slashes slashes)
      : treatments_(slashes == Slashes::plain ? plainSlashes : escapedSlashes) {}

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
      std::size_t run = 0;
      while (run < text.size() && treatment(text[run]) == Treatment::copied) ++run;
      out_ += text.substr(0, run);
      text.remove_prefix(run);
      if (!text.empty()) text.remove_prefix(writeSpecial(text));
    }
    out_ += '"';
  }

  /// Writes the character that `text` begins with and gives the number of bytes it took there.
  std::size_t writeSpecial(std::string_view text) {
    if (treatment(text.front()) == Treatment::escaped) {
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

  [[nodiscard]] Treatment treatment(char byte) const {
    return treatments_[static_cast<unsigned char>(byte)];
  }

  const Treatments& treatments_;
  std::string out_;
};

}  // namespace

std::string write(const Value& value, Slashes slashes) {
  Writer writer(slashes);
  writer.write(value);
  return writer.take();
}

}  // namespace quillstead::JSON
