#pragma once

#include "support/JSON/Value.h"

#include <string>
#include <string_view>

/// For looking into values of which parts may be absent.
namespace quillstead::JSON {

/// `value` when there is one of the wanted kind, else null.
inline const std::string* textOf(const Value* value) { return value ? value->string() : nullptr; }
inline const Object* objectOf(const Value* value) { return value ? value->object() : nullptr; }
inline const Array* arrayOf(const Value* value) { return value ? value->array() : nullptr; }

/// True when `value` is there and is exactly the text `expected`.
inline bool isText(const Value* value, std::string_view expected) {
  const std::string* text = textOf(value);
  return text && *text == expected;
}

}  // namespace quillstead::JSON
