#pragma once

#include "support/JSON/View.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
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

using Array = std::vector<Value>;

/// The members of an object, in order; no key is repeated.
class Object {
 public:
  Object() = default;

  /// The keys of `members` must differ.
  explicit Object(std::vector<Member> members);

  /// The members of an object that was read. Their values are views into its document, which must
  /// outlive this.
  explicit Object(ObjectView members);

  [[nodiscard]] const Value* find(std::string_view key) const;  ///< null when there is none
  [[nodiscard]] std::span<const Member> members() const;
  [[nodiscard]] std::size_t size() const;
  [[nodiscard]] bool empty() const { return size() == 0; }

  /// Replaces the value of `key` in place, or adds the member at the end.
  void set(std::string_view key, Value value);

 private:
  std::vector<Member> members_;
};

/// A string that is owned elsewhere, and a suffix for it.
struct JoinedString {
  std::string_view first;
  std::string second;
};

/// A value to write. It owns its data, except views into documents and joined strings, which must
/// outlive it.
class Value {
 public:
  // Defined after `Member`, because the list of members needs its size.
  Value();  ///< null
  Value(std::nullptr_t);
  Value(bool boolean);
  Value(std::int64_t integer);
  Value(int integer);
  Value(std::string string);
  Value(std::string_view string);
  Value(const char* string);
  Value(JoinedString string);
  Value(Array array);
  Value(Object object);
  Value(View part);

  /// `text` must be a valid JSON number.
  static Value number(std::string text);

  /// A copy that does not need the document.
  static Value copyOf(View part);

  [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(data_); }

  /// Each returns the content when the value is of that kind; else null.
  [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&data_); }
  [[nodiscard]] std::optional<Number> number() const;
  [[nodiscard]] const std::string* string() const { return std::get_if<std::string>(&data_); }
  [[nodiscard]] const JoinedString* joinedString() const {
    return std::get_if<JoinedString>(&data_);
  }
  [[nodiscard]] const Array* array() const { return std::get_if<Array>(&data_); }
  [[nodiscard]] const Object* object() const { return std::get_if<Object>(&data_); }
  [[nodiscard]] const View* part() const { return std::get_if<View>(&data_); }

 private:
  struct NumberText {
    std::string text;
  };

  std::variant<std::monostate, bool, NumberText, std::string, JoinedString, Array, Object, View>
      data_;
};

struct Member {
  std::string key;
  Value value;
};

inline Value::Value() = default;
inline Value::Value(std::nullptr_t) {}
inline Value::Value(bool boolean) : data_(boolean) {}
inline Value::Value(std::int64_t integer) : data_(NumberText{std::to_string(integer)}) {}
inline Value::Value(int integer) : Value(std::int64_t{integer}) {}
inline Value::Value(std::string string) : data_(std::move(string)) {}
inline Value::Value(std::string_view string) : data_(std::string(string)) {}
inline Value::Value(const char* string) : data_(std::string(string)) {}
inline Value::Value(JoinedString string) : data_(std::move(string)) {}
inline Value::Value(Array array) : data_(std::move(array)) {}
inline Value::Value(Object object) : data_(std::move(object)) {}
inline Value::Value(View part) : data_(part) {}

/// An object literal: `objectOf({{"id", 1}, {"method", "initialize"}})`. Keys must differ.
template <std::size_t count>
Object objectOf(Member (&&members)[count]) {
  return Object(std::vector<Member>(std::move_iterator(std::begin(members)),
                                    std::move_iterator(std::end(members))));
}

}  // namespace quillstead::JSON
