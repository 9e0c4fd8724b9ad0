#include "Encodings.h"

#include "support/Text/Text.h"

namespace quillstead {

namespace {

struct Encoding {
  std::size_t width;  ///< bytes of a unit
  bool isBigEndian;
};

void appendUnit(std::string& bytes, char32_t unit, Encoding encoding) {
  for (std::size_t at = 0; at < encoding.width; ++at) {
    const std::size_t place = encoding.isBigEndian ? encoding.width - 1 - at : at;
    bytes.push_back(static_cast<char>((unit >> (8 * place)) & 0xFFU));
  }
}

std::string encoded(const std::u32string& text, Encoding encoding) {
  std::string bytes;
  for (const char32_t character : text) {
    if (encoding.width == 1) {
      Text::appendCharacter(bytes, character);
    } else if (encoding.width == 4 || character < 0x10000) {
      appendUnit(bytes, character, encoding);
    } else {
      appendUnit(bytes, 0xD800 + ((character - 0x10000) >> 10U), encoding);
      appendUnit(bytes, 0xDC00 + ((character - 0x10000) & 0x3FFU), encoding);
    }
  }
  return bytes;
}

}  // namespace

std::vector<std::string> inEveryEncoding(const std::u32string& text) {
  std::vector<std::string> spellings;
  for (const Encoding encoding : {Encoding{1, false}, Encoding{2, false}, Encoding{2, true},
                                  Encoding{4, false}, Encoding{4, true}}) {
    spellings.push_back(encoded(text, encoding));
    spellings.push_back(encoded(U"\uFEFF" + text, encoding));
  }
  return spellings;
}

}  // namespace quillstead
