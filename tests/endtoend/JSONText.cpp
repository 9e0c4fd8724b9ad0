#include "JSONText.h"

#include "support/JSON/Reader.h"

#include <algorithm>

namespace quillstead {

namespace {

bool isSameObject(const JSON::Object& left, const JSON::Object& right, Members members) {
  if (left.size() != right.size()) return false;
  for (std::size_t at = 0; at < left.size(); ++at) {
    const JSON::Member& member = left.members()[at];
    if (members == Members::ordered && right.members()[at].key != member.key) return false;
    const JSON::Value* const other = right.find(member.key);
    if (!other || !isSame(member.value, *other, members)) return false;
  }
  return true;
}

bool isSameArray(const JSON::Array& left, const JSON::Array& right, Members members) {
  return std::equal(
      left.begin(), left.end(), right.begin(), right.end(),
      [&](const auto& one, const auto& other) { return isSame(one, other, members); });
}

template <typename Content>
bool areEqual(const Content* left, const Content* right) {
  return left && right && *left == *right;
}

MATCHER_P2(IsDocument, expected, members, std::string(negation ? "isn't " : "is ") + expected) {
  const auto actual = JSON::read(arg);
  return actual && isSame(JSON::Value::copyOf(actual->root()), document(expected), members);
}

MATCHER_P(IsCompactLine, slashes, "is one compact line") {
  const std::string_view text = arg;
  return text.ends_with('\n') && isCompact(text.substr(0, text.size() - 1), slashes);
}

}  // namespace

bool isSame(const JSON::Value& left, const JSON::Value& right, Members members) {
  if (left.isNull()) return right.isNull();
  if (left.boolean()) return areEqual(left.boolean(), right.boolean());
  if (left.string()) return areEqual(left.string(), right.string());
  if (left.number()) return right.number() && left.number()->text() == right.number()->text();
  if (left.array()) return right.array() && isSameArray(*left.array(), *right.array(), members);
  return right.object() && isSameObject(*left.object(), *right.object(), members);
}

JSON::Value document(std::string_view text) {
  const auto read = JSON::read(text);
  EXPECT_TRUE(read) << "no JSON document: " << text;
  return read ? JSON::Value::copyOf(read->root()) : JSON::Value();
}

std::string jsonString(std::string_view text) {
  const std::string array = JSON::write(JSON::Array{text}, JSON::Slashes::plain);
  return array.substr(1, array.size() - 2);
}

bool isCompact(std::string_view text, JSON::Slashes slashes) {
  bool isInString = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isBlank = std::string_view(" \t\r\n").find(text[at]) != std::string_view::npos;
    if (isBlank && !isInString) return false;
    if (text[at] == '/' && slashes == JSON::Slashes::escaped) return false;
    if (text[at] == '"') isInString = !isInString;
    if (text[at] != '\\') continue;
    ++at;
    if (text.substr(at, 1) == "/" && slashes == JSON::Slashes::plain) return false;
  }
  return !isInString;
}

std::vector<std::string> writtenKeys(std::string_view text) {
  std::vector<std::string> keys;
  int depth = 0;
  std::string_view lastText;
  for (std::size_t at = 0; at < text.size(); ++at) {
    switch (text[at]) {
      case '{':
      case '[':
        ++depth;
        break;
      case '}':
      case ']':
        if (--depth == 0) return keys;
        break;
      case '"': {
        const std::size_t start = at++;
        while (text[at] != '"') at += text[at] == '\\' ? 2U : 1U;
        lastText = text.substr(start, at - start + 1);
        break;
      }
      case ':':
        if (depth == 1)
          keys.push_back(*document("[" + std::string(lastText) + "]").array()->at(0).string());
        break;
      default:
        break;
    }
  }
  return keys;
}

JSON::Value without(const JSON::Object& object, std::string_view key) {
  std::vector<JSON::Member> kept;
  for (const JSON::Member& member : object.members()) {
    if (member.key != key) kept.push_back(member);
  }
  return JSON::Object(std::move(kept));
}

::testing::Matcher<const std::string&> isJSON(const std::string& expected) {
  return IsDocument(expected, Members::inAnyOrder);
}

::testing::Matcher<const std::string&> isOrderedJSON(const std::string& expected) {
  return IsDocument(expected, Members::ordered);
}

::testing::Matcher<const std::string&> isAnswer(const std::string& expected) {
  return ::testing::AllOf(IsCompactLine(JSON::Slashes::escaped), isJSON(expected));
}

::testing::Matcher<const std::string&> isPretoolAnswer(const std::string& expected) {
  return ::testing::AllOf(IsCompactLine(JSON::Slashes::plain), isJSON(expected));
}

}  // namespace quillstead
