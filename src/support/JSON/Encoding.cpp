#include "support/JSON/Encoding.h"

#include "support/Text/Text.h"

#include <cstdint>

namespace quillstead::JSON {

namespace {

using namespace std::string_view_literals;

bool isWide(Encoding encoding) {
  return encoding == Encoding::utf32LittleEndian || encoding == Encoding::utf32BigEndian;
}

bool isBigEndian(Encoding encoding) {
  return encoding == Encoding::utf16BigEndian || encoding == Encoding::utf32BigEndian;
}

/// Reads the code units of a byte string one after the other.
class Units {
 public:
  Units(std::string_view bytes, Encoding encoding)
      : bytes_(bytes), size_(isWide(encoding) ? 4 : 2), bigEndian_(isBigEndian(encoding)) {}

  [[nodiscard]] bool areWhole() const { return bytes_.size() % size_ == 0; }
  [[nodiscard]] bool atEnd() const { return offset_ >= bytes_.size(); }

  std::uint32_t next() {
    std::uint32_t unit = 0;
    for (std::size_t i = 0; i < size_; ++i) {
      const std::size_t place = bigEndian_ ? i : size_ - 1 - i;
      unit = (unit << 8U) | static_cast<unsigned char>(bytes_[offset_ + place]);
    }
    offset_ += size_;
    return unit;
  }

 private:
  std::string_view bytes_;
  std::size_t size_;
  bool bigEndian_;
  std::size_t offset_ = 0;
};

}  // namespace

DetectedEncoding detectEncoding(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF"sv)) return {Encoding::utf8, 3};
  if (bytes.starts_with("\xFF\xFE\0\0"sv)) return {Encoding::utf32LittleEndian, 4};
  if (bytes.starts_with("\0\0\xFE\xFF"sv)) return {Encoding::utf32BigEndian, 4};
  if (bytes.starts_with("\xFF\xFE"sv)) return {Encoding::utf16LittleEndian, 2};
  if (bytes.starts_with("\xFE\xFF"sv)) return {Encoding::utf16BigEndian, 2};

  if (bytes.starts_with("\0\0"sv)) return {Encoding::utf32BigEndian, 0};
  if (bytes.starts_with("\0"sv)) return {Encoding::utf16BigEndian, 0};
  if (bytes.size() < 2 || bytes[1] != '\0') return {Encoding::utf8, 0};
  return {
      bytes.substr(2, 2) == "\0\0"sv ? Encoding::utf32LittleEndian : Encoding::utf16LittleEndian,
      0};
}

std::optional<std::string> toUTF8(std::string_view bytes, Encoding encoding) {
  Units units(bytes, encoding);
  if (!units.areWhole()) return std::nullopt;

  std::string utf8;
  utf8.reserve(bytes.size());
  while (!units.atEnd()) {
    std::uint32_t character = units.next();
    if (!isWide(encoding) && Surrogates::isHigh(character)) {
      const std::uint32_t low = units.atEnd() ? 0 : units.next();
      if (!Surrogates::isLow(low)) return std::nullopt;
      character = Surrogates::joined(character, low);
    }
    if (!Text::appendCharacter(utf8, character)) return std::nullopt;
  }
  return utf8;
}

}  // namespace quillstead::JSON
