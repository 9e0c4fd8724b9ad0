#include "server/Rules/RulesBlock.h"

#include "contract/Contract.h"
#include "server/Shown.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillstead::server {

namespace {

/// A title that does not fit is skipped. The list ends after this many skipped titles.
constexpr std::size_t mostSkipped = 20;

std::string headingFor(std::size_t total) {
  return "Memory holds " + std::to_string(total) + (total == 1 ? " card" : " cards") +
         " (`grab` reads one by its title):";
}

/// The lines of titles, each made when it is first asked for.
class Lines {
 public:
  explicit Lines(const std::vector<std::string>& titles) : titles_(titles) {}

  [[nodiscard]] std::size_t count() const { return titles_.size(); }

  /// Asked for in their order at first.
  const std::string& at(std::size_t place) {
    if (place == made_.size()) made_.push_back("\n- " + Shown::line(titles_[place]));
    return made_[place];
  }

 private:
  const std::vector<std::string>& titles_;
  std::vector<std::string> made_;
};

/// The list of all titles; absent when it is longer than `limit` bytes.
std::optional<std::string> whole(Lines& lines, std::size_t limit) {
  std::string text = headingFor(lines.count());
  for (std::size_t place = 0; place < lines.count(); ++place) {
    text += lines.at(place);
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
  Lines lines(titles.newest);
  if (titles.newest.size() == titles.total) {
    if (auto all = whole(lines, limit)) return std::move(*all);
  }
  std::string text = headingFor(titles.total);
  std::size_t shown = 0;
  std::size_t passedOver = 0;
  for (std::size_t place = 0; place < lines.count(); ++place) {
    const std::string& line = lines.at(place);
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
