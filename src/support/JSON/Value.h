#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quillstead::JSON {

class Value;
struct Member;

/// A number, kept as the text it had in its document, so that it can be written back unchanged
/// whatever its size or precision.
class Number {
 public:
  Number(std::int64_t integer) : text_(std::to_string(integer)) {}

  /// `text` must be a number by JSON's grammar.
  static Number fromText(std::string text) { return Number(std::move(text)); }

  [[nodiscard]] const std::string& text() const { return text_; }

  /// The value of a number written without fraction and exponent; absent for every other number
  /// (also for 3.0 and 3e0) and for an integer outside 64 bits.
  [[nodiscard]] std::optional<std::int64_t> integer() const;

  /// The nearest double; infinite when the number is beyond a double's range.
  [[nodiscard]] double approximation() const;

 private:
  explicit Number(std::string text) : text_(std::move(text)) {}

  std::string text_;
};

using Array = std::vector<Value>;

/// The members of an object in document order, no key twice.
class Object {
 public:
  Object() = default;

  /// Adopts members as they came in a document: of several with the same key the last value counts,
  /// in the place of the first.
  explicit Object(std::vector<Member> members);

  [[nodiscard]] const Value* find(std::string_view key) const;  ///< null when there is none
  [[nodiscard]] Value* find(std::string_view key);
  [[nodiscard]] std::span<const Member> members() const;
  [[nodiscard]] std::size_t size() const;
  [[nodiscard]] bool empty() const { return size() == 0; }

  /// Replaces the value of `key` where it stands, or adds it at the end.
  void set(std::string_view key, Value value);

 private:
  std::vector<Member> members_;
};

/// One JSON value. Texts are valid UTF-8 when they come from the reader.
class Value {
 public:
  // Defined behind `Member`, whose size the members' list has to know.
  Value();  ///< null
  Value(std::nullptr_t);
  Value(bool boolean);
  Value(Number number);
  Value(std::int64_t integer);
  Value(int integer);
  Value(std::string text);
  Value(std::string_view text);
  Value(const char* text);
  Value(Array array);
  Value(Object object);

  [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(data_); }

  /// Each gives the content when the value is of that kind, else null.
  [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&data_); }
  [[nodiscard]] const Number* number() const { return std::get_if<Number>(&data_); }
  [[nodiscard]] const std::string* text() const { return std::get_if<std::string>(&data_); }
  [[nodiscard]] const Array* array() const { return std::get_if<Array>(&data_); }
  [[nodiscard]] const Object* object() const { return std::get_if<Object>(&data_); }
  [[nodiscard]] std::string* text() { return std::get_if<std::string>(&data_); }
  [[nodiscard]] Object* object() { return std::get_if<Object>(&data_); }

  /// Becomes `content`, which is a bool, `Number`, text, `Array` or `Object`, without a value of
  /// its own in between.
  template <typename Content>
  Content& emplace(Content content) {
    return data_.template emplace<Content>(std::move(content));
  }

 private:
  std::variant<std::monostate, bool, Number, std::string, Array, Object> data_;
};

struct Member {
  std::string key;
  Value value;
};

inline Value::Value() = default;
inline Value::Value(std::nullptr_t) {}
inline Value::Value(bool boolean) : data_(boolean) {}
inline Value::Value(Number number) : data_(std::move(number)) {}
inline Value::Value(std::int64_t integer) : data_(Number(integer)) {}
inline Value::Value(int integer) : data_(Number(integer)) {}
inline Value::Value(std::string text) : data_(std::move(text)) {}
inline Value::Value(std::string_view text) : data_(std::string(text)) {}
inline Value::Value(const char* text) : data_(std::string(text)) {}
inline Value::Value(Array array) : data_(std::move(array)) {}
inline Value::Value(Object object) : data_(std::move(object)) {}

/// An object literal: `objectOf({{"id", 1}, {"method", "initialize"}})`. Keys must differ.
template <std::size_t count>
Object objectOf(Member (&&members)[count]) {
  std::vector<Member> list;
  list.reserve(count);
  for (Member& member : members) list.push_back(std::move(member));
  return Object(std::move(list));
}

/// `value` when there is one of the wanted kind, else null: for looking into what may be absent.
inline const std::string* textOf(const Value* value) { return value ? value->text() : nullptr; }
inline const Object* objectOf(const Value* value) { return value ? value->object() : nullptr; }
inline Object* objectOf(Value* value) { return value ? value->object() : nullptr; }
inline const Array* arrayOf(const Value* value) { return value ? value->array() : nullptr; }

/// True when `value` is there and is exactly the text `expected`.
inline bool isText(const Value* value, std::string_view expected) {
  const std::string* text = textOf(value);
  return text && *text == expected;
}

}  // namespace quillstead::JSON
