#include "hook/BlockSplit.h"

#include "support/Text/Text.h"

namespace quillstead::hook::BlockSplit {

namespace {

std::string fenced(std::string_view text) {
  std::string block(opening);
  block += text;
  block += closing;
  return Text::repaired(std::move(block));
}

}  // namespace

std::optional<Halves> split(std::string_view block, std::int64_t indexSpan) {
  const bool isFenced = block.size() >= opening.size() + closing.size() &&
                        block.starts_with(opening) && block.ends_with(closing);
  if (!isFenced || indexSpan < 1) return std::nullopt;

  const std::string_view inner =
      block.substr(opening.size(), block.size() - opening.size() - closing.size());
  if (static_cast<std::uint64_t>(indexSpan) >= inner.size()) return std::nullopt;
  const std::size_t cut = inner.size() - static_cast<std::size_t>(indexSpan);
  if (inner[cut - 1] != '\n') return std::nullopt;
  return Halves{.head = fenced(inner.substr(0, cut - 1)), .index = fenced(inner.substr(cut))};
}

}  // namespace quillstead::hook::BlockSplit
