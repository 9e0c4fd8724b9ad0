// Any bytes as a JSON document: what can be read reads back equal from its written form, in either
// style of slashes and in every encoding.
#include "Property.h"

#include <array>

using namespace quillstead;

namespace {

struct WideEncoding {
  std::size_t unitSize;
  bool isBigEndian;
};

constexpr std::array encodings{WideEncoding{2, false}, WideEncoding{2, true},
                               WideEncoding{4, false}, WideEncoding{4, true}};

void appendUnit(std::string& out, std::uint32_t unit, const WideEncoding& encoding) {
  for (std::size_t i = 0; i < encoding.unitSize; ++i) {
    const std::size_t place = encoding.isBigEndian ? encoding.unitSize - 1 - i : i;
    out += static_cast<char>((unit >> (8U * place)) & 0xFFU);
  }
}

std::string encoded(std::string_view utf8, const WideEncoding& encoding, bool hasMark) {
  std::string out;
  if (hasMark) appendUnit(out, 0xFEFF, encoding);
  while (!utf8.empty()) {
    const Text::Decoded next = Text::decodeFirst(utf8);
    utf8.remove_prefix(next.length);
    std::uint32_t character = next.character;
    if (encoding.unitSize == 2 && character >= 0x10000) {
      character -= 0x10000;
      appendUnit(out, 0xD800 + (character >> 10U), encoding);
      character = 0xDC00 + (character & 0x3FFU);
    }
    appendUnit(out, character, encoding);
  }
  return out;
}

std::string readAndWritten(std::string_view document, JSON::Slashes slashes) {
  const std::optional<JSON::Document> read = JSON::read(document);
  Fuzz::require(read.has_value(), "what was written can be read");
  return JSON::write(read->root(), slashes);
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::optional<JSON::Document> document = JSON::read(Fuzz::bytes(data, size));
  if (!document) return 0;
  const JSON::View root = document->root();
  Fuzz::require(root.object() || root.array(), "a document is an object or an array");

  const std::string escaped = JSON::write(root, JSON::Slashes::escaped);
  const std::string plain = JSON::write(root, JSON::Slashes::plain);
  Fuzz::require(JSON::write(JSON::Value::copyOf(root), JSON::Slashes::plain) == plain,
                "a copy is the same");
  for (const std::string& written : {plain, escaped}) {
    Fuzz::require(Fuzz::isUTF8(written), "a written document is UTF-8");
    Fuzz::require(Fuzz::isOneLine(written), "a written document is one line");
    Fuzz::require(readAndWritten(written, JSON::Slashes::plain) == plain, "it reads back equal");
    Fuzz::require(readAndWritten(written, JSON::Slashes::escaped) == escaped,
                  "it reads back equal");
  }
  Fuzz::require(readAndWritten("\xEF\xBB\xBF" + plain, JSON::Slashes::plain) == plain,
                "it reads back equal behind a byte order mark");
  for (const WideEncoding& encoding : encodings) {
    for (const bool hasMark : {false, true}) {
      const std::string wide = encoded(plain, encoding, hasMark);
      Fuzz::require(readAndWritten(wide, JSON::Slashes::plain) == plain,
                    "it reads back equal in every encoding");
    }
  }
  return 0;
}
