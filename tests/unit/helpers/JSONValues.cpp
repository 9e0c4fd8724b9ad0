#include "unit/helpers/JSONValues.h"

#include "support/JSON/Reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace quillstead::unit {

using JSON::Encoding;
using JSON::Member;
using JSON::Object;
using JSON::Value;

namespace {

bool areSameScalars(const Value& left, const Value& right) {
  if (left.string() && right.string()) return *left.string() == *right.string();
  if (left.number() && right.number()) return left.number()->text() == right.number()->text();
  if (left.boolean() && right.boolean()) return *left.boolean() == *right.boolean();
  return left.isNull() && right.isNull();
}

template <typename Compare>
bool areSameArrays(const Value& left, const Value& right, Compare compare) {
  return std::equal(left.array()->begin(), left.array()->end(), right.array()->begin(),
                    right.array()->end(), compare);
}

void appendUTF8(std::string& bytes, char32_t character) {
  const auto byte = [&](std::uint32_t value) { bytes += static_cast<char>(value); };
  const auto continuation = [&](unsigned shift) { byte(0x80 | ((character >> shift) & 0x3F)); };
  if (character < 0x80) {
    byte(character);
  } else if (character < 0x800) {
    byte(0xC0 | (character >> 6));
    continuation(0);
  } else if (character < 0x10000) {
    byte(0xE0 | (character >> 12));
    continuation(6);
    continuation(0);
  } else {
    byte(0xF0 | (character >> 18));
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

void appendUnit(std::string& bytes, std::uint32_t unit, std::size_t size, bool bigEndian) {
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t place = bigEndian ? size - 1 - i : i;
    bytes += static_cast<char>((unit >> (8 * place)) & 0xFF);
  }
}

void appendUTF16(std::string& bytes, char32_t character, bool bigEndian) {
  if (character < 0x10000) return appendUnit(bytes, character, 2, bigEndian);
  const std::uint32_t offset = character - 0x10000;
  appendUnit(bytes, 0xD800 + (offset >> 10), 2, bigEndian);
  appendUnit(bytes, 0xDC00 + (offset & 0x3FF), 2, bigEndian);
}

}  // namespace

JSON::Document documentIn(std::string_view text) {
  std::optional<JSON::Document> document = JSON::read(text);
  EXPECT_TRUE(document) << "not a document: " << text.substr(0, 1000);
  return document ? *std::move(document) : *JSON::read("{}");
}

Value parsed(std::string_view text) { return Value::copyOf(documentIn(text).root()); }

Object parsedObject(std::string_view text) {
  const Value value = parsed(text);
  EXPECT_TRUE(value.object()) << "not an object: " << text.substr(0, 1000);
  return value.object() ? *value.object() : Object();
}

bool areSame(const Value& left, const Value& right) {
  if (left.array() && right.array()) return areSameArrays(left, right, areSame);
  if (!left.object() || !right.object()) return areSameScalars(left, right);
  const auto mine = left.object()->members();
  const auto other = right.object()->members();
  return std::equal(
      mine.begin(), mine.end(), other.begin(), other.end(),
      [](const Member& a, const Member& b) { return a.key == b.key && areSame(a.value, b.value); });
}

bool areEquivalent(const Value& left, const Value& right) {
  if (left.array() && right.array()) return areSameArrays(left, right, areEquivalent);
  if (!left.object() || !right.object()) return areSameScalars(left, right);
  const auto members = left.object()->members();
  return left.object()->size() == right.object()->size() &&
         std::all_of(members.begin(), members.end(), [&](const Member& member) {
           const Value* const other = right.object()->find(member.key);
           return other && areEquivalent(member.value, *other);
         });
}

Object without(const Object& object, std::string_view key) {
  Object rest;
  for (const Member& member : object.members()) {
    if (member.key != key) rest.set(member.key, member.value);
  }
  return rest;
}

std::string encoded(std::u32string_view text, Encoding encoding, bool marked) {
  std::u32string all(marked ? U"\uFEFF" : U"");
  all += text;
  std::string bytes;
  for (const char32_t character : all) {
    switch (encoding) {
      case Encoding::utf8:
        appendUTF8(bytes, character);
        break;
      case Encoding::utf16LittleEndian:
        appendUTF16(bytes, character, false);
        break;
      case Encoding::utf16BigEndian:
        appendUTF16(bytes, character, true);
        break;
      case Encoding::utf32LittleEndian:
        appendUnit(bytes, character, 4, false);
        break;
      case Encoding::utf32BigEndian:
        appendUnit(bytes, character, 4, true);
        break;
    }
  }
  return bytes;
}

std::size_t ValueGenerator::below(std::size_t limit) { return random_() % limit; }

std::string ValueGenerator::text() {
  static constexpr std::array<char32_t, 24> characters{
      U'a',      U'Z',      U'0',      U' ',      U'/',          U'"',
      U'\\',     U'\n',     U'\t',     U'\r',     U'\b',         U'\f',
      U'\0',     U'\x1F',   U'\x7F',   U'\u00E9', U'\u2028',     U'\u2029',
      U'\u20AC', U'\uFEFF', U'\uFFFD', U'\uFFFF', U'\U0001F600', U'\U0010FFFF'};
  std::u32string text;
  for (std::size_t length = below(12); length > 0; --length) {
    text += characters[below(characters.size())];
  }
  return encoded(text, Encoding::utf8);
}

std::string ValueGenerator::number() {
  std::string text = below(2) == 0 ? "-" : "";
  text += below(4) == 0 ? '0' : static_cast<char>('1' + below(9));
  if (text.back() != '0') {
    for (std::size_t digits = below(30); digits > 0; --digits) {
      text += static_cast<char>('0' + below(10));
    }
  }
  if (below(3) == 0) {
    text += '.';
    for (std::size_t digits = 1 + below(20); digits > 0; --digits) {
      text += static_cast<char>('0' + below(10));
    }
  }
  if (below(3) == 0) {
    text += below(2) == 0 ? 'e' : 'E';
    static constexpr std::array<const char*, 3> signs{"", "+", "-"};
    text += signs[below(signs.size())];
    text += std::to_string(below(1000));
  }
  return text;
}

Value ValueGenerator::value(int depth) {
  switch (below(depth > 0 ? 8 : 5)) {
    case 0:
      return nullptr;
    case 1:
      return below(2) == 0;
    case 2:
    case 3:
      return Value::number(number());
    case 4:
      return text();
    case 5: {
      JSON::Array elements;
      for (std::size_t count = below(5); count > 0; --count) elements.push_back(value(depth - 1));
      return elements;
    }
    default:
      return object(depth - 1);
  }
}

Object ValueGenerator::object(int depth) {
  Object object;
  for (std::size_t count = below(6); count > 0; --count) object.set(text(), value(depth));
  return object;
}

}  // namespace quillstead::unit
