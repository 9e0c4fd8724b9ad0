#include "server/Rules/RulesBlock.h"

#include "server/Fence.h"

namespace quillstead {

const std::size_t RulesBlock::fenceSize = Fence::rulesOpening.size() + Fence::rulesClosing.size();

RulesBlock RulesBlock::fenced(std::string_view rules, std::string_view index) {
  RulesBlock block;
  if (rules.empty() && index.empty()) return block;
  block.text.append(Fence::rulesOpening).append(rules);
  if (!index.empty()) {
    block.text.append("\n").append(index);
    block.indexSpan = index.size();
  }
  block.text.append(Fence::rulesClosing);
  return block;
}

}  // namespace quillstead
