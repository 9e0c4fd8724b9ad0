#include "hook/SlotPlan.h"

#include "hook/BlockSplit.h"

#include <utility>

namespace quillstead::hook {

namespace {

std::optional<BlockSplit::Halves> halvesOf(const std::optional<std::string>& block,
                                           std::optional<std::int64_t> indexSpan) {
  return block && indexSpan ? BlockSplit::split(*block, *indexSpan) : std::nullopt;
}

SlotRules headOf(std::optional<std::string> block, std::optional<std::int64_t> indexSpan) {
  std::optional<BlockSplit::Halves> halves = halvesOf(block, indexSpan);
  return {.text = halves ? std::move(halves->head) : std::move(block), .trailField = {}};
}

SlotRules indexOf(const std::optional<std::string>& block, std::optional<std::int64_t> indexSpan) {
  std::optional<BlockSplit::Halves> halves = halvesOf(block, indexSpan);
  if (halves) return {.text = std::move(halves->index), .trailField = "index=1"};
  return {.text = {}, .trailField = indexSpan ? "index=MISS:no-span" : "index=0"};
}

}  // namespace

SlotRules SlotRules::of(SlotPlan::Rules part, std::optional<std::string> block,
                        std::optional<std::int64_t> indexSpan) {
  switch (part) {
    case SlotPlan::Rules::whole:
      return {.text = std::move(block), .trailField = {}};
    case SlotPlan::Rules::head:
      return headOf(std::move(block), indexSpan);
    case SlotPlan::Rules::index:
      return indexOf(block, indexSpan);
    case SlotPlan::Rules::none:
      break;
  }
  return {};
}

}  // namespace quillstead::hook
