#pragma once

#include "server/Index/Index.h"

#include <cstddef>
#include <string>
#include <vector>

/// Hands the cards that matter for a prompt to the agent.
namespace quillstead::Recall {

inline constexpr std::size_t mostCards = 8;
inline constexpr std::size_t longestCard = 3'000;  ///< bytes of one card in a block

/// Cards in a fence. The header and each card are set apart by a blank line.
struct Block {
  std::string text;                ///< empty when there are no cards
  std::vector<std::size_t> spans;  ///< the bytes of each card, in order
};

/// `cards`: rendered by `rendered`, none empty.
Block fenced(const std::vector<std::string>& cards);

/// One card's text in a block: title, where it is from, body. Safe to stand in a fence; cut between
/// characters, with a line that says so, when it is too long.
std::string rendered(std::string_view text, const CardPlace& place);

/// The block for the cards at these places, in their order; one that is gone is left out.
Block block(const Scope& scope, const std::vector<CardPlace>& places);

}  // namespace quillstead::Recall
