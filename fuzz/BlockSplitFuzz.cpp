// Any block and any span: the halves of a split rebuild the block.
#include "Property.h"
#include "hook/BlockSplit.h"

#include <fuzzer/FuzzedDataProvider.h>

using namespace quillstead;
using namespace quillstead::hook;

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  FuzzedDataProvider source(data, size);
  const bool isAnySpan = source.ConsumeBool();
  const auto anySpan = source.ConsumeIntegral<std::int64_t>();
  const auto nearSpan = static_cast<std::int64_t>(source.ConsumeIntegral<std::uint16_t>());
  const bool isFenced = source.ConsumeBool();
  std::string block = source.ConsumeRemainingBytesAsString();
  if (isFenced) block = std::string(BlockSplit::opening) + block + std::string(BlockSplit::closing);

  const std::int64_t span = isAnySpan ? anySpan : nearSpan;
  const auto halves = BlockSplit::split(block, span);
  if (!halves) return 0;
  for (const std::string& half : {halves->head, halves->index}) {
    Fuzz::require(Fuzz::isUTF8(half), "a half is UTF-8");
    Fuzz::require(half.starts_with(BlockSplit::opening) && half.ends_with(BlockSplit::closing),
                  "a half is fenced");
  }
  const std::string rebuilt =
      halves->head.substr(0, halves->head.size() - BlockSplit::closing.size()) + "\n" +
      halves->index.substr(BlockSplit::opening.size());
  Fuzz::require(rebuilt == Text::repaired(block), "the halves rebuild the block");

  const std::size_t fences = BlockSplit::opening.size() + BlockSplit::closing.size();
  const bool isWhole = Fuzz::isUTF8(block);
  Fuzz::require(!isWhole || halves->index.size() - fences == static_cast<std::size_t>(span),
                "the index is as long as its span");
  return 0;
}
