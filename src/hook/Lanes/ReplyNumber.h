#pragma once

#include "support/JSON/View.h"

#include <cstdint>
#include <optional>

namespace quillstead::ReplyNumber {

/// The value when it is a number written as an integer of at least 1 and at most 64 bits; absent
/// for anything else: a missing value, a boolean, 3.0.
inline std::optional<std::int64_t> positive(JSON::View value) {
  const std::optional<JSON::Number> number = value.number();
  const auto integer = number ? number->integer() : std::nullopt;
  return integer && *integer >= 1 ? integer : std::nullopt;
}

}  // namespace quillstead::ReplyNumber
