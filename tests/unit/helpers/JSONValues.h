#pragma once

#include "helpers/JSONLookups.h"
#include "support/JSON/Encoding.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Value.h"

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace quillstead::unit {

/// The document in `text`; fails the test, and gives an empty object, when it is none.
JSON::Document documentIn(std::string_view text);

/// The same as a value, which needs no document.
JSON::Value parsed(std::string_view text);

/// The object in `text`; fails the test, and gives an empty one, when it is none.
JSON::Object parsedObject(std::string_view text);

/// True when both are the same value: the same members in the same order, and numbers of the same
/// text.
bool areSame(const JSON::Value& left, const JSON::Value& right);

/// True when they are the same up to the order of members.
bool areEquivalent(const JSON::Value& left, const JSON::Value& right);

/// The object without one of its members.
JSON::Object without(const JSON::Object& object, std::string_view key);

/// `text` as bytes of an encoding, behind a byte order mark when asked for.
std::string encoded(std::u32string_view text, JSON::Encoding encoding, bool marked = false);

/// Makes up values of every kind, the same ones for the same seed.
class ValueGenerator {
 public:
  explicit ValueGenerator(std::uint32_t seed) : random_(seed) {}

  JSON::Value value(int depth);
  JSON::Object object(int depth);
  std::string text();
  std::string number();
  std::size_t below(std::size_t limit);

 private:
  std::mt19937 random_;
};

}  // namespace quillstead::unit
