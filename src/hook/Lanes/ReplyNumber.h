#pragma once

#include "support/JSON/Value.h"

#include <cstdint>
#include <optional>

namespace quillstead::ReplyNumber {

/// The value when it is a number written as an integer of at least 1 and at most 64 bits; absent
/// for anything else: a missing value, a boolean, 3.0.
inline std::optional<std::int64_t> positive(const JSON::Value* value) {
  const JSON::Number* const number = value ? value->number() : nullptr;
  const auto integer = number ? number->integer() : std::nullopt;
  return integer && *integer >= 1 ? integer : std::nullopt;
}

}  // namespace quillstead::ReplyNumber
