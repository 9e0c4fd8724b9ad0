#include "server/Recall/Recall.h"

#include "server/Fence.h"
#include "server/Store/Card.h"
#include "server/Store/StoreFiles.h"
#include "support/Text/Text.h"

#include <variant>

namespace quillstead::Recall {

namespace {

constexpr std::string_view header =
    "Cards from memory that match this prompt, best first (`grab` reads a whole card):";
constexpr std::string_view gap = "\n\n";

/// At most `limit` bytes of `text`, no character taken apart.
std::string_view beginning(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text;
  while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0U) == 0x80) --limit;
  return Text::trimmed(text.substr(0, limit));
}

std::string source(const Card& card, const CardPlace& place) {
  std::string line;
  line.append("(").append(nameOf(place.store)).append(": ");
  line.append(onOneLine(Text::repaired(place.fileName)));
  for (const std::string& tag : card.tags) {
    line.append(&tag == &card.tags.front() ? "; " : ", ").append(tag);
  }
  return line.append(")");
}

}  // namespace

Block fenced(const std::vector<std::string>& cards) {
  Block block;
  if (cards.empty()) return block;
  block.text.append(Fence::memoryOpening).append(header);
  for (const std::string& card : cards) {
    block.text.append(gap).append(card);
    block.spans.push_back(card.size());
  }
  block.text.append(Fence::memoryClosing);
  return block;
}

std::string rendered(std::string_view text, const CardPlace& place) {
  const Card card = Card::parse(text, place.fileName);
  std::string whole = Fence::harmless("## " + card.title + "\n" + onOneLine(source(card, place)) +
                                      (card.body.empty() ? "" : "\n" + card.body));
  if (whole.size() <= longestCard) return whole;
  const std::string note = "\n… (cut; `grab` reads all of it)";
  return std::string(beginning(whole, longestCard - note.size())) + note;
}

Block block(const Scope& scope, const std::vector<CardPlace>& places) {
  std::vector<std::string> cards;
  for (const CardPlace& place : places) {
    const auto& store = place.store == Store::Kind::project ? scope.project : scope.personal;
    if (!store) continue;
    const auto read = StoreFiles::readCard(StoreFiles::openCards(*store), place.fileName);
    const auto* file = std::get_if<StoreFiles::FileText>(&read);
    if (file) cards.push_back(rendered(file->text, place));
  }
  return fenced(cards);
}

}  // namespace quillstead::Recall
