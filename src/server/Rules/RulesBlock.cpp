#include "server/Rules/RulesBlock.h"

#include "contract/Contract.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::server {

namespace {

std::string headingFor(std::size_t total) {
  return "Memory holds " + std::to_string(total) + (total == 1 ? " card" : " cards") +
         " (`grab` reads one by its title):";
}

constexpr std::string_view lineStart = "\n- ";

/// The list of all titles; absent when it is longer than `limit` bytes.
std::optional<std::string> whole(const std::vector<std::string>& titles, std::size_t limit) {
  std::string text = headingFor(titles.size());
  for (const std::string& title : titles) {
    text.append(lineStart).append(title);
    if (text.size() > limit) return std::nullopt;
  }
  return text;
}

std::string remainder(std::size_t count) {
  if (count == 0) return {};
  return "\n- … and " + std::to_string(count) + " more (`memory_get_relevant` finds them)";
}

}  // namespace

const std::size_t RulesBlock::fenceSize =
    contract::RulesFence::opening.size() + contract::RulesFence::closing.size();

RulesBlock RulesBlock::fenced(std::string_view rules, std::string_view index) {
  RulesBlock block;
  if (rules.empty() && index.empty()) return block;
  block.text.append(contract::RulesFence::opening).append(rules);
  if (!index.empty()) {
    block.text.append("\n").append(index);
    block.indexSpan = index.size();
  }
  block.text.append(contract::RulesFence::closing);
  return block;
}

void RulesBlock::closeHeadWith(std::string_view note) {
  if (text.empty()) {
    *this = fenced(note, {});
    return;
  }
  const std::size_t after = indexSpan ? *indexSpan + lineBeforeIndex : 0;
  const std::size_t end = text.size() - contract::RulesFence::closing.size() - after;
  const bool isAlone = end == contract::RulesFence::opening.size();
  text.insert(end, std::string(isAlone ? "" : "\n\n").append(note));
}

std::string RulesBlock::index(const Titles& titles, std::size_t limit) {
  if (titles.newest.empty()) return {};
  if (titles.newest.size() == titles.total) {
    if (auto all = whole(titles.newest, limit)) return std::move(*all);
  }
  std::string text = headingFor(titles.total);
  const std::size_t longestRemainder = remainder(titles.total).size();
  std::size_t shown = 0;
  std::size_t passedOver = 0;
  for (const std::string& title : titles.newest) {
    const std::size_t size = text.size() + lineStart.size() + title.size();
    if (size + longestRemainder <= limit ||
        size + remainder(titles.total - shown - 1).size() <= limit) {
      text.append(lineStart).append(title);
      ++shown;
    } else if (++passedOver == mostSkipped) {
      break;
    }
  }
  if (shown == 0) return {};
  return text + remainder(titles.total - shown);
}

}  // namespace quillstead::server
