#pragma once

#include "contract/Contract.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Splits a rules block into the rules and the index at its end.
namespace quillstead::hook::BlockSplit {

/// The fence of a rules block.
inline constexpr std::string_view opening = contract::RulesFence::opening;
inline constexpr std::string_view closing = contract::RulesFence::closing;

struct Halves {
  std::string head;   ///< the rules without the index, fenced
  std::string index;  ///< only the index, fenced
};

/// `indexSpan`: the index's size in bytes, without the line feed before it and without the fences.
/// Absent when the block has no fence, or no line begins where the index should.
std::optional<Halves> split(std::string_view block, std::int64_t indexSpan);

}  // namespace quillstead::hook::BlockSplit
