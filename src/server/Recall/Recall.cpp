#include "server/Recall/Recall.h"

#include "contract/Contract.h"
#include "server/Markdown/Markdown.h"
#include "server/Recall/Passage.h"
#include "server/Shown.h"
#include "server/Store/Card.h"
#include "server/Store/StoreFiles.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace quillstead::server::Recall {

namespace {

constexpr std::string_view header =
    "Cards from memory that match this prompt, best first (`grab` reads a whole card):";

constexpr std::string_view titleMark = "## ";
constexpr std::string_view cutMark = "…";
constexpr std::string_view passageNote = "\n… (a passage; `grab` reads all of it)";

/// `line`, cut to `limit` bytes.
std::string shortened(std::string_view line, std::size_t limit) {
  if (line.size() <= limit) return std::string(line);
  return std::string(Passage::beginning(line, limit - cutMark.size())).append(cutMark);
}

std::vector<ShownCard> read(const Scope& scope, const std::vector<CardPlace>& places) {
  std::vector<ShownCard> all;
  std::array<std::optional<OS::Descriptor>, 2> directories;
  for (const CardPlace& place : places) {
    const auto& store = place.store == Store::Kind::project ? scope.project : scope.personal;
    if (!store) continue;
    auto& cards = directories.at(static_cast<std::size_t>(place.store));
    if (!cards) cards = StoreFiles::openCards(*store);
    auto content = StoreFiles::readCard(*cards, store->kind, place.fileName);
    auto* const file = std::get_if<StoreFiles::FileText>(&content);
    if (file) all.push_back({.place = place, .text = std::move(file->text)});
  }
  return all;
}

/// The space that the cards of a block share.
std::size_t roomFor(std::size_t cards) {
  namespace Fence = contract::MemoryFence;
  return longestBlock - Fence::opening.size() - header.size() - Fence::closing.size() -
         cards * Fence::gap.size();
}

std::string source(const Card& card, const CardPlace& place) {
  std::string line;
  line.append("(").append(nameOf(place.store)).append(": ");
  line.append(Shown::line(place.fileName));
  for (const std::string& tag : card.tags) {
    line.append(&tag == &card.tags.front() ? "; " : ", ").append(Shown::line(tag));
  }
  return line.append(")");
}

/// A card to show, before its share of the space is known.
class Printable {
 public:
  Printable(std::string_view text, const CardPlace& place) {
    const Card card = Card::parse(text, place.fileName);
    title_ = std::string(titleMark) + Shown::line(card.title);
    source_ = source(card, place);
    if (!card.body.empty()) body_ = Markdown::withLowerHeadings(Shown::text(card.body));
  }

  /// The bytes it takes within `limit`: all of them when it has to be cut.
  [[nodiscard]] std::size_t need(std::size_t limit) const {
    return std::min(head(limit).size() + body_.size(), limit);
  }

  [[nodiscard]] std::string within(std::size_t limit,
                                   const std::vector<Words::SearchTerm>& terms) const {
    std::string shown = head(limit);
    if (shown.size() + body_.size() <= limit) return shown.append(body_);
    const std::size_t taken = shown.size() + cutMark.size() + passageNote.size();
    const std::string_view passage = Passage::best(body_, terms, limit - std::min(limit, taken));
    if (passage.data() != body_.data()) shown += cutMark;
    return shown.append(passage).append(passageNote);
  }

 private:
  /// The text before the body.
  [[nodiscard]] std::string head(std::size_t limit) const {
    const std::size_t longestLine = limit / 3;
    std::string lines = shortened(title_, longestLine + titleMark.size());
    lines.append("\n").append(shortened(source_, longestLine));
    if (!body_.empty()) lines += '\n';
    return lines;
  }

  std::string title_;
  std::string source_;
  std::string body_;
};

}  // namespace

Block fenced(const std::vector<std::string>& cards) {
  Block block;
  if (cards.empty()) return block;
  block.text.append(contract::MemoryFence::opening).append(header);
  for (const std::string& card : cards) {
    block.text.append(contract::MemoryFence::gap).append(card);
    block.spans.push_back(card.size());
  }
  block.text.append(contract::MemoryFence::closing);
  return block;
}

std::string rendered(std::string_view text, const CardPlace& place,
                     const std::vector<Words::SearchTerm>& terms, std::size_t limit) {
  return Printable(text, place).within(limit, terms);
}

std::vector<std::size_t> shares(const std::vector<std::size_t>& needs, std::size_t room) {
  std::vector<std::size_t> smallestFirst(needs.size());
  std::iota(smallestFirst.begin(), smallestFirst.end(), 0U);
  std::sort(smallestFirst.begin(), smallestFirst.end(),
            [&needs](std::size_t one, std::size_t other) { return needs[one] < needs[other]; });
  std::vector<std::size_t> all(needs.size());
  std::size_t left = needs.size();
  for (const std::size_t card : smallestFirst) {
    all[card] = std::min({needs[card], room / left, longestCard});
    room -= all[card];
    --left;
  }
  return all;
}

std::vector<CardPlace> choose(std::vector<CardPlace> candidates) {
  std::array<std::size_t, 2> matching{};
  for (const CardPlace& place : candidates) ++matching.at(static_cast<std::size_t>(place.store));
  std::array<std::size_t, 2> free{};
  for (const std::size_t store : {0U, 1U}) {
    free.at(store) = matching.at(1 - store) > 0 ? mostOfOneStore : mostCards;
  }
  std::erase_if(candidates, [&](const CardPlace& place) {
    std::size_t& places = free.at(static_cast<std::size_t>(place.store));
    if (places == 0) return true;
    --places;
    return false;
  });
  candidates.resize(std::min(candidates.size(), mostCards));
  return candidates;
}

Block block(const Scope& scope, const std::vector<CardPlace>& places,
            const std::vector<Words::SearchTerm>& terms) {
  std::vector<ShownCard> found = read(scope, places);
  std::vector<Printable> printables;
  std::vector<std::size_t> needs;
  printables.reserve(found.size());
  needs.reserve(found.size());
  for (const ShownCard& one : found) {
    needs.push_back(printables.emplace_back(one.text, one.place).need(longestCard));
  }
  const std::vector<std::size_t> limits = shares(needs, roomFor(found.size()));
  std::vector<std::string> cards;
  cards.reserve(found.size());
  for (std::size_t at = 0; at < found.size(); ++at) {
    // A text that fits is shown exactly as it was measured.
    const std::size_t limit = needs[at] > limits[at] ? limits[at] : longestCard;
    cards.push_back(printables[at].within(limit, terms));
  }
  Block block = fenced(cards);
  block.cards = std::move(found);
  return block;
}

}  // namespace quillstead::server::Recall

namespace quillstead::server::ShownCards {

namespace {

const Store* storeOf(const CardPlace& place, const Scope& scope) {
  const auto& store = place.store == Store::Kind::project ? scope.project : scope.personal;
  return store ? &*store : nullptr;
}

std::string pathOf(const CardPlace& place, const Scope& scope) {
  const Store* const store = storeOf(place, scope);
  return (store ? store->root : std::string()) + '/' + place.fileName;
}

bool isKnown(const CardPlace& place, const SessionMemory& session, const Scope& scope) {
  const std::string path = pathOf(place, scope);
  const Store* const store = storeOf(place, scope);
  if (!store || !session.knowsPlace(path)) return false;
  const auto read =
      StoreFiles::readCard(StoreFiles::openCards(*store), store->kind, place.fileName);
  const auto* const file = std::get_if<StoreFiles::FileText>(&read);
  return file && session.knowsCard(path, file->text);
}

}  // namespace

void remove(std::vector<CardPlace>& places, const SessionMemory& session, const Scope& scope) {
  std::erase_if(places, [&](const CardPlace& place) { return isKnown(place, session, scope); });
}

void note(const Recall::Block& block, SessionMemory& session, const Scope& scope) {
  const std::size_t room = std::min(session.room(), Recall::longestBlock);
  std::size_t size = block.text.size();
  for (const std::size_t span : block.spans) size -= span;
  for (std::size_t at = 0; at < block.spans.size(); ++at) {
    size += block.spans[at];
    if (size > room) break;
    session.cardShown(pathOf(block.cards[at].place, scope), block.cards[at].text);
  }
  session.keep();
}

}  // namespace quillstead::server::ShownCards
