#include "hook/ContextBudget.h"

#include "support/Text/Text.h"

#include <algorithm>
#include <utility>

namespace quillstead::hook::ContextBudget {

namespace {

constexpr std::int64_t costOfSeparator = 2;  ///< the blank line between two texts

std::int64_t length(std::string_view text) { return static_cast<std::int64_t>(text.size()); }

/// Where the first card begins, when the last one ends at `end`. Absent when the cards do not fit
/// after the opening fence and a gap, or there is no gap where the sizes say.
std::optional<std::size_t> startOfCards(std::string_view bytes, std::size_t end,
                                        const std::vector<std::int64_t>& spans) {
  const std::size_t least = Envelope::opening.size() + Envelope::gap.size();
  std::size_t at = end;
  for (auto span = spans.rbegin(); span != spans.rend(); ++span) {
    if (*span < 1 || at < least || static_cast<std::uint64_t>(*span) > at - least) {
      return std::nullopt;
    }
    at -= static_cast<std::size_t>(*span);
    if (!bytes.substr(0, at).ends_with(Envelope::gap)) return std::nullopt;
    const bool isFirst = std::next(span) == spans.rend();
    if (!isFirst) at -= Envelope::gap.size();
  }
  return at;
}

/// Takes texts one by one while they fit. Each costs its length and a separator.
class Purse {
 public:
  explicit Purse(std::int64_t limit) : remaining_(limit) {}

  [[nodiscard]] std::int64_t remaining() const { return remaining_; }

  /// Keeps `text` if it is there and fits; returns whether it was kept.
  bool keep(std::optional<std::string>& text, std::vector<std::string>& kept) {
    if (!text || length(*text) > remaining_) return false;
    remaining_ -= length(*text) + costOfSeparator;
    kept.push_back(std::move(*text));
    return true;
  }

 private:
  std::int64_t remaining_;
};

struct TrimmedMemory {
  std::optional<std::string> text;
  std::int64_t cardsDropped;
};

TrimmedMemory trimmed(std::string memory, std::int64_t remaining,
                      std::optional<std::int64_t> cardCount,
                      std::optional<std::vector<std::int64_t>> cardSpans) {
  if (length(memory) <= remaining) return {.text = std::move(memory), .cardsDropped = 0};

  TrimmedMemory dropped{.text = std::nullopt, .cardsDropped = cardCount.value_or(0)};
  if (!cardCount || *cardCount < 1 || !cardSpans) return dropped;
  if (static_cast<std::int64_t>(cardSpans->size()) != *cardCount) return dropped;
  const auto envelope = Envelope::measured(std::move(memory), std::move(*cardSpans));
  const std::size_t kept = envelope ? envelope->cardsWithin(remaining) : 0;
  if (kept == 0) return dropped;
  return {.text = envelope->rendered(kept),
          .cardsDropped = *cardCount - static_cast<std::int64_t>(kept)};
}

Fitted withoutLimit(Texts texts) {
  Fitted fitted;
  fitted.justEndedKept = texts.justEnded.has_value();
  for (auto* text : {&texts.rules, &texts.shortcut, &texts.justEnded, &texts.memory}) {
    if (*text) fitted.texts.push_back(std::move(**text));
  }
  return fitted;
}

}  // namespace

Fitted fit(Texts texts) {
  if (!texts.limit) return withoutLimit(std::move(texts));

  Fitted fitted;
  Purse purse(*texts.limit);
  fitted.rulesOverBudget = !purse.keep(texts.rules, fitted.texts) && texts.rules;
  fitted.shortcutOverBudget = !purse.keep(texts.shortcut, fitted.texts) && texts.shortcut;
  fitted.justEndedKept = purse.keep(texts.justEnded, fitted.texts);
  if (!texts.memory) return fitted;

  TrimmedMemory memory = trimmed(std::move(*texts.memory), purse.remaining(), texts.cardCount,
                                 std::move(texts.cardSpans));
  fitted.cardsDropped = memory.cardsDropped;
  if (memory.text) fitted.texts.push_back(std::move(*memory.text));
  return fitted;
}

Envelope::Envelope(std::string bytes, std::size_t start, std::vector<std::int64_t> spans)
    : bytes_(std::move(bytes)), start_(start), spans_(std::move(spans)) {}

std::optional<Envelope> Envelope::measured(std::string block, std::vector<std::int64_t> spans) {
  if (spans.empty() || !block.starts_with(opening) || !block.ends_with(closing)) {
    return std::nullopt;
  }
  const auto start = startOfCards(block, block.size() - closing.size(), spans);
  if (!start) return std::nullopt;
  return Envelope(std::move(block), *start, std::move(spans));
}

std::size_t Envelope::endOfCards(std::size_t count) const {
  std::size_t end = start_ + gap.size() * (count - 1);
  for (std::size_t card = 0; card < count; ++card) end += static_cast<std::size_t>(spans_[card]);
  return end;
}

std::size_t Envelope::cardsWithin(std::int64_t limit) const {
  auto size = static_cast<std::int64_t>(endOfCards(spans_.size()) + closing.size());
  std::size_t count = spans_.size();
  while (count > 0 && size > limit) {
    size -= spans_[--count] + static_cast<std::int64_t>(gap.size());
  }
  return count;
}

std::string Envelope::rendered(std::size_t count) const {
  std::string cut = bytes_.substr(0, endOfCards(std::min(count, spans_.size())));
  cut += closing;
  return Text::repaired(std::move(cut));
}

}  // namespace quillstead::hook::ContextBudget
