#pragma once

#include "server/Index/Index.h"
#include "server/Index/Words.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Hands the cards that matter for a prompt to the agent.
namespace quillstead::server::Recall {

inline constexpr std::size_t mostCards = 8;
inline constexpr std::size_t mostOfOneStore = 6;
inline constexpr std::size_t mostCandidates = 40;   ///< so many, that some may be passed over
inline constexpr std::size_t longestBlock = 6'000;  ///< bytes of all that is shown
inline constexpr std::size_t longestCard = 1'500;   ///< bytes of one card in a block

/// A card of a block.
struct ShownCard {
  CardPlace place;
  std::string text;  ///< of its file
};

/// Cards in a fence. The header and each card are set apart by a blank line.
struct Block {
  std::string text;                ///< empty when there are no cards
  std::vector<std::size_t> spans;  ///< the bytes of each card, in order
  std::vector<ShownCard> cards;    ///< what the cards are, in order
};

/// `cards`: rendered by `rendered`, none empty.
Block fenced(const std::vector<std::string>& cards);

/// One card's text in a block, at most `limit` bytes: title, where it is from, body. Of a body that
/// is too long, the passage that says most of the terms, and a line that says so. Safe to stand in
/// a fence; no character is taken apart.
std::string rendered(std::string_view text, const CardPlace& place,
                     const std::vector<Words::SearchTerm>& terms, std::size_t limit);

/// How many bytes each of some cards gets of `room`: what it needs, or as much as any other that
/// needs more, but at most `longestCard`.
std::vector<std::size_t> shares(const std::vector<std::size_t>& needs, std::size_t room);

/// The cards to show: at most `mostCards` of the candidates, which come best first, and at most
/// `mostOfOneStore` of one store while the other has some.
std::vector<CardPlace> choose(std::vector<CardPlace> candidates);

/// The block for the cards at these places, in their order, at most `longestBlock` bytes; one that
/// is gone is left out.
Block block(const Scope& scope, const std::vector<CardPlace>& places, std::string_view prompt);

}  // namespace quillstead::server::Recall
