#pragma once

#include "support/JSON/View.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillstead::hook {

/// What one lane returned; every part is checked.
struct LaneOutcome {
  std::optional<std::string> block;       ///< the rules or the cards; absent when there are none
  std::vector<std::string> fields;        ///< "key=value" for the telemetry line, in order
  std::optional<std::int64_t> cardCount;  ///< memory: cards in `block`
  std::optional<std::vector<std::int64_t>> cardSpans;  ///< memory: bytes of each card, in order
  std::optional<std::int64_t> indexSpan;  ///< rules: bytes of the index that ends `block`
  bool declineFast = false;               ///< rules: the server itself is broken
  std::optional<std::string> shortcut;    ///< memory: a text fenced by <quillstead-shortcut>
  std::optional<std::string> justEnded;   ///< memory: a text fenced by <quillstead-now>
};

/// Numbers in a reply's metadata.
namespace ReplyNumber {

/// The value when it is an integer from 1 to the largest of 64 bits. Absent for anything else, such
/// as a missing value, a boolean, or 3.0.
inline std::optional<std::int64_t> positive(JSON::View value) {
  const std::optional<JSON::Number> number = value.number();
  const auto integer = number ? number->integer() : std::nullopt;
  return integer && *integer >= 1 ? integer : std::nullopt;
}

}  // namespace ReplyNumber
}  // namespace quillstead::hook
