#include "server/Rules/RulesCard.h"

#include "contract/Contract.h"
#include "server/Rules/Rules.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace quillstead::server::RulesCard {

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max() / 2;

/// When space is short, the index may take a quarter of the block before rules are cut.
constexpr std::size_t indexShare = 4;

struct Head {
  Kind kind;
  std::string text;
};

std::size_t less(std::size_t size, std::size_t taken) { return size > taken ? size - taken : 0; }

std::string leftOut(std::size_t count) {
  return "\n\n(" + std::to_string(count) + (count == 1 ? " more rule was" : " more rules were") +
         " left out here; the tool `rules_get` gives all of them.)";
}

/// As many whole rules as fit, and a line with the number of those left out.
std::optional<std::string> cut(std::string_view rules, std::size_t limit) {
  const std::vector<std::size_t> borders = Rules::borders(rules);
  for (std::size_t kept = less(borders.size(), 1); kept > 0; --kept) {
    const std::string note = leftOut(borders.size() - kept);
    const std::size_t length = borders[kept - 1];
    if (length + note.size() <= limit) return std::string(rules.substr(0, length)) + note;
  }
  return std::nullopt;
}

Head pointer(std::string_view rules, std::size_t limit) {
  const std::array<std::string, 3> wordings{
      "The user's rules (" + std::to_string(rules.size()) +
          " bytes) do not fit here. The tool `rules_get`, called without arguments, gives them.",
      "The user's rules do not fit here; `rules_get` gives them.", "Rules: see `rules_get`."};
  for (const std::string& wording : wordings) {
    if (wording.size() <= limit) return {Kind::pointer, wording};
  }
  return {Kind::nothing, {}};
}

/// `limit`: bytes for the text between the fences.
Head headWithin(std::string_view rules, std::size_t limit) {
  if (rules.size() <= limit) return {Kind::whole, std::string(rules)};
  if (auto text = cut(rules, limit)) return {Kind::cut, std::move(*text)};
  return pointer(rules, limit);
}

/// What is cut when rules and index do not both fit.
enum class Shortened { index, rules };

Card within(std::string_view rules, const Titles& titles, const Ceilings& ceilings,
            Shortened shortened) {
  const std::size_t room = less(ceilings.block.value_or(unlimited), RulesBlock::fenceSize);
  const std::size_t headRoom = less(ceilings.head.value_or(unlimited), RulesBlock::fenceSize);

  // Rules that fit beside a small index are not cut to make room for a large one.
  std::string index = RulesBlock::index(titles, RulesBlock::ordinaryIndex);
  const std::size_t reserved =
      index.empty() ? 0 : std::min(index.size() + RulesBlock::lineBeforeIndex, room / indexShare);
  Head head = headWithin(rules, std::min(headRoom, less(room, reserved)));
  const bool fitsAlone = rules.size() <= std::min(headRoom, room);
  if (shortened == Shortened::index && fitsAlone) head = {Kind::whole, std::string(rules)};

  const std::size_t left = less(room, head.text.size() + RulesBlock::lineBeforeIndex);
  const bool fits = RulesBlock::fenceSize <=
                    std::min(ceilings.block.value_or(unlimited), ceilings.head.value_or(unlimited));
  if (!fits) index.clear();
  if (index.size() > left) index = RulesBlock::index(titles, left);
  return {.kind = head.kind, .block = RulesBlock::fenced(head.text, index)};
}

Card madeWithoutNote(std::string_view rules, const Titles& titles, const Ceilings& ceilings) {
  if (ceilings.head && !ceilings.block) {
    // A caller that limits only the head may split head and index, or may take the block whole or
    // not at all. So the whole block stays within the head's limit when both parts still fit.
    const Ceilings same{.block = ceilings.head, .head = ceilings.head};
    Card card = within(rules, titles, same, Shortened::rules);
    if (card.block.indexSpan && (card.kind == Kind::whole || card.kind == Kind::cut)) return card;
  }
  return within(rules, titles, ceilings, Shortened::index);
}

std::optional<std::size_t> less(std::optional<std::size_t> ceiling, std::size_t taken) {
  return ceiling ? std::optional(less(*ceiling, taken)) : std::nullopt;
}

}  // namespace

Card made(std::string_view rules, const Titles& titles, const Ceilings& ceilings,
          std::string_view note) {
  const std::size_t alone = note.size() + RulesBlock::fenceSize;
  const bool fits =
      alone <= std::min(ceilings.block.value_or(unlimited), ceilings.head.value_or(unlimited));
  if (note.empty() || !fits) return madeWithoutNote(rules, titles, ceilings);
  const std::size_t taken = note.size() + RulesBlock::gapBeforeNote;
  Card card = madeWithoutNote(
      rules, titles, {.block = less(ceilings.block, taken), .head = less(ceilings.head, taken)});
  card.block.closeHeadWith(note);
  return card;
}

std::string_view nameOf(Kind kind) {
  switch (kind) {
    case Kind::whole:
      return "whole";
    case Kind::cut:
      return "cut";
    case Kind::pointer:
      return contract::pointer;
    case Kind::nothing:
      break;
  }
  return "nothing";
}

}  // namespace quillstead::server::RulesCard
