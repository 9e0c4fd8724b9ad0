#include "GeneratedInput.h"

#include "support/Text/Text.h"

#include <array>
#include <cstdio>
#include <string_view>
#include <vector>

namespace quillstead {

namespace {

constexpr std::size_t deepest = 5;

std::string escapeOf(char32_t unit, bool isUpperCase) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), isUpperCase ? "\\u%04X" : "\\u%04x",
                static_cast<unsigned>(unit));
  return text.data();
}

}  // namespace

JSON::Object GeneratedInput::object(std::size_t depth) {
  JSON::Object object;
  // Few keys to choose from now and then, so that objects of many members come up too.
  const std::size_t count = oneIn(20) ? below(60) : below(7);
  for (std::size_t member = 0; member < count; ++member) object.set(text(), value(depth + 1));
  if (depth > 0 || !oneIn(4)) return object;
  constexpr std::array<std::string_view, 4> telling{"_quillstead_session", "_quillstead_subagent",
                                                    "prompt", "tool_input"};
  object.set(telling.at(below(telling.size())), value(deepest));
  return object;
}

JSON::Value GeneratedInput::value(std::size_t depth) {
  switch (below(depth < deepest ? 8 : 5)) {
    case 0:
      return nullptr;
    case 1:
      return oneIn(2);
    case 2:
      return number();
    case 3:
    case 4:
      return text();
    case 5:
      return object(depth);
    default: {
      JSON::Array array;
      const std::size_t count = below(6);
      for (std::size_t element = 0; element < count; ++element) array.push_back(value(depth + 1));
      return array;
    }
  }
}

std::string GeneratedInput::digits(std::size_t most) {
  std::string digits;
  const std::size_t count = 1 + below(most);
  for (std::size_t at = 0; at < count; ++at) digits += static_cast<char>('0' + below(10));
  return digits;
}

JSON::Value GeneratedInput::number() {
  std::string text = oneIn(3) ? "-" : "";
  text += oneIn(4) ? "0" : static_cast<char>('1' + below(9)) + (oneIn(4) ? "" : digits(40));
  if (oneIn(3)) text += "." + digits(30);
  if (oneIn(4)) {
    text += oneIn(2) ? "e" : "E";
    constexpr std::array<std::string_view, 3> signs{"", "+", "-"};
    text += std::string(signs.at(below(signs.size()))) + digits(4);
  }
  return JSON::Value::number(text);
}

std::string GeneratedInput::text() {
  std::string text;
  const std::size_t length = oneIn(30) ? below(400) : below(9);
  for (std::size_t at = 0; at < length; ++at) Text::appendCharacter(text, character());
  return text;
}

char32_t GeneratedInput::character() {
  constexpr std::u32string_view telling =
      U"\"\\/\b\f\n\r\t\0\x01\x1f\x7f{}[]:, _u\u00e9\u2028\u2029"
      U"\ufeff\ufffd\uffff\ud7ff\ue000\U00010000\U0001f642"
      U"\U0010ffff";
  if (oneIn(2)) return static_cast<char32_t>('a' + below(26));
  if (oneIn(2)) return telling.at(below(telling.size()));
  const auto character = static_cast<char32_t>(below(0x110000));
  const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
  return isSurrogate ? U'x' : character;
}

std::string GeneratedInput::space() {
  constexpr std::array<std::string_view, 5> spaces{" ", "\n", "\t", "\r\n", "  "};
  return oneIn(4) ? std::string(spaces.at(below(spaces.size()))) : "";
}

std::string GeneratedInput::written(const JSON::Value& value) {
  if (value.string()) return space() + spelled(*value.string()) + space();
  if (value.number()) return space() + std::string(value.number()->text()) + space();
  if (value.boolean()) return space() + (*value.boolean() ? "true" : "false") + space();
  std::string text;
  if (value.array()) {
    for (const JSON::Value& element : *value.array()) {
      text += (text.empty() ? "" : ",") + written(element);
    }
    return space() + "[" + text + space() + "]" + space();
  }
  if (!value.object()) return space() + "null" + space();
  for (const JSON::Member& member : value.object()->members()) {
    if (!text.empty()) text += ",";
    if (oneIn(12)) text += spelled(member.key) + ":" + written(this->value(deepest)) + ",";
    text += space() + spelled(member.key) + space() + ":" + written(member.value);
  }
  return space() + "{" + text + space() + "}" + space();
}

std::string GeneratedInput::spelled(const std::string& text) {
  std::string spelling = "\"";
  std::string_view rest = text;
  while (!rest.empty()) {
    const Text::Decoded decoded = Text::decodeFirst(rest);
    spelling += spelled(decoded.character);
    rest.remove_prefix(decoded.length);
  }
  return spelling + "\"";
}

std::string GeneratedInput::spelled(char32_t character) {
  constexpr std::string_view needing = "\"\\/\b\f\n\r\t";
  constexpr std::string_view letters = "\"\\/bfnrt";
  const std::size_t place =
      character < 0x80 ? needing.find(static_cast<char>(character)) : std::string_view::npos;
  const bool mustEscape = character < 0x20 || character == '"' || character == '\\';
  if (place != std::string_view::npos && (mustEscape || oneIn(2)) && !oneIn(4)) {
    return std::string("\\") + letters[place];
  }
  if (!mustEscape && !oneIn(6)) {
    std::string plain;
    Text::appendCharacter(plain, character);
    return plain;
  }
  if (character < 0x10000) return escapeOf(character, oneIn(2));
  return escapeOf(0xD800 + ((character - 0x10000) >> 10U), oneIn(2)) +
         escapeOf(0xDC00 + ((character - 0x10000) & 0x3FFU), oneIn(2));
}

}  // namespace quillstead
