#pragma once

#include "server/Index/Index.h"
#include "server/Index/Words.h"
#include "server/Session/SessionMemory.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Chooses and shows the cards for a prompt.
namespace quillstead::server::Recall {

inline constexpr std::size_t mostCards = 8;
inline constexpr std::size_t mostOfOneStore = 6;
inline constexpr std::size_t mostCandidates =
    40;  ///< more than are shown, because some may be skipped
inline constexpr std::size_t longestBlock = 6'000;  ///< bytes of all that is shown
inline constexpr std::size_t longestCard = 1'500;   ///< bytes of one card in a block

/// A card of a block.
struct ShownCard {
  CardPlace place;
  std::string text;  ///< of its file
};

/// Cards in a fence. A blank line separates the header and each card.
struct Block {
  std::string text;                ///< empty when there are no cards
  std::vector<std::size_t> spans;  ///< the bytes of each card, in order
  std::vector<ShownCard> cards;    ///< the cards, in order
};

/// `cards`: rendered by `rendered`, none empty.
Block fenced(const std::vector<std::string>& cards);

/// One card's text in a block, at most `limit` bytes: title, origin, body. If the body is too long,
/// the passage whose terms weigh most, and a line that says so. Safe inside a fence; characters are
/// not split.
std::string rendered(std::string_view text, const CardPlace& place,
                     const std::vector<Words::SearchTerm>& terms, std::size_t limit);

/// How many bytes of `room` each card gets: what it needs, or an equal share, and at most
/// `longestCard`.
std::vector<std::size_t> shares(const std::vector<std::size_t>& needs, std::size_t room);

/// The cards to show: at most `mostCards` of the candidates (best first), and at most
/// `mostOfOneStore` from one store if the other has candidates too.
std::vector<CardPlace> choose(std::vector<CardPlace> candidates);

/// The block with the cards at these places, in order, at most `longestBlock` bytes. A card that no
/// longer exists is left out. `terms`: of the prompt.
Block block(const Scope& scope, const std::vector<CardPlace>& places,
            const std::vector<Words::SearchTerm>& terms);

}  // namespace quillstead::server::Recall

/// Leaves out cards that a session has seen already.
namespace quillstead::server::ShownCards {

/// Removes from `places` the cards that the session was shown with their current text.
void remove(std::vector<CardPlace>& places, const SessionMemory& session, const Scope& scope);

/// Records the cards of `block` that certainly reach the agent, and saves the session.
void note(const Recall::Block& block, SessionMemory& session, const Scope& scope);

}  // namespace quillstead::server::ShownCards
