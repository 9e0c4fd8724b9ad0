#pragma once

#include "support/JSON/Value.h"

#include <cstdint>
#include <random>
#include <string>

namespace quillstead {

/// Makes up JSON objects, and writes each in one of the many ways in which it can be written: white
/// space, escapes, and members that a later one of the same key makes void. The same seed gives the
/// same objects.
class GeneratedInput {
 public:
  explicit GeneratedInput(std::uint64_t seed) : random_(seed) {}

  /// No key twice.
  JSON::Object object() { return object(0); }

  /// `value` as a document, in one of its spellings.
  std::string written(const JSON::Value& value);

 private:
  std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }
  bool oneIn(std::size_t chances) { return below(chances) == 0; }

  JSON::Object object(std::size_t depth);
  JSON::Value value(std::size_t depth);
  JSON::Value number();
  std::string digits(std::size_t most);
  std::string text();
  char32_t character();

  std::string space();
  std::string spelled(const std::string& text);
  std::string spelled(char32_t character);

  std::mt19937_64 random_;
};

}  // namespace quillstead
