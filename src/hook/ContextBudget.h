#pragma once

#include "contract/Contract.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Fits the lanes' texts into the context that a harness accepts. All sizes are bytes of UTF-8.
namespace quillstead::hook::ContextBudget {

/// The texts; absent ones are left out of the result.
struct Texts {
  std::optional<std::string> rules;
  std::optional<std::string> memory;
  std::optional<std::int64_t> cardCount;               ///< cards in `memory`
  std::optional<std::vector<std::int64_t>> cardSpans;  ///< the size of each card, in order
  std::optional<std::int64_t> limit;                   ///< absent: everything goes out
  std::optional<std::string> shortcut;
  std::optional<std::string> justEnded;
};

struct Fitted {
  std::vector<std::string> texts;  ///< what goes out: rules, shortcut, just-ended note, memory
  bool rulesOverBudget = false;
  std::int64_t cardsDropped = 0;
  bool shortcutOverBudget = false;
  bool justEndedKept = false;
};

/// Keeps what fits, in that order of priority; an earlier text is never dropped for a later one.
/// The memory loses cards from its end. It is dropped whole when its cards are not where its spans
/// say.
Fitted fit(Texts texts);

/// A memory block with cards of known sizes: the opening fence, a header, each card after a gap,
/// and the closing fence.
class Envelope {
 public:
  static constexpr std::string_view opening = contract::MemoryFence::opening;
  static constexpr std::string_view closing = contract::MemoryFence::closing;
  static constexpr std::string_view gap = contract::MemoryFence::gap;

  /// Absent when `block` does not consist of cards of exactly these sizes.
  static std::optional<Envelope> measured(std::string block, std::vector<std::int64_t> spans);

  [[nodiscard]] std::size_t cardCount() const { return spans_.size(); }

  /// How many cards fit into `limit` bytes, with header and fences.
  [[nodiscard]] std::size_t cardsWithin(std::int64_t limit) const;

  /// The block with only its first `count` cards (at least 1).
  [[nodiscard]] std::string rendered(std::size_t count) const;

 private:
  Envelope(std::string bytes, std::size_t start, std::vector<std::int64_t> spans);

  [[nodiscard]] std::size_t endOfCards(std::size_t count) const;

  std::string bytes_;
  std::size_t start_;  ///< where the first card begins
  std::vector<std::int64_t> spans_;
};

}  // namespace quillstead::hook::ContextBudget
