#include "server/Rules/RulesBlock.h"

#include "contract/Contract.h"
#include "server/Shown.h"

#include <utility>

namespace quillstead::server {

namespace {

/// A title that does not fit is skipped. The list ends after this many skipped titles.
constexpr std::size_t mostSkipped = 20;

std::string headingFor(std::size_t total) {
  return "Memory holds " + std::to_string(total) + (total == 1 ? " card" : " cards") +
         " (`grab` reads one by its title):";
}

std::string lineFor(const std::string& title) { return "\n- " + Shown::line(title); }

/// The list of all titles; absent when it is longer than `limit` bytes.
std::optional<std::string> whole(const Titles& titles, std::size_t limit) {
  if (titles.newest.size() < titles.total) return std::nullopt;
  std::string text = headingFor(titles.total);
  for (const std::string& title : titles.newest) {
    text += lineFor(title);
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
  if (auto all = whole(titles, limit)) return std::move(*all);
  std::string text = headingFor(titles.total);
  std::size_t shown = 0;
  std::size_t passedOver = 0;
  for (const std::string& title : titles.newest) {
    const std::string line = lineFor(title);
    const std::size_t left = titles.total - shown - 1;
    if (text.size() + line.size() + remainder(left).size() <= limit) {
      text += line;
      ++shown;
    } else if (++passedOver == mostSkipped) {
      break;
    }
  }
  if (shown == 0) return {};
  return text + remainder(titles.total - shown);
}

}  // namespace quillstead::server
