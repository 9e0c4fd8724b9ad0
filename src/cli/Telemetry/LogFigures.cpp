#include "cli/Telemetry/LogFigures.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace quillstead::cli {

namespace {

constexpr std::int64_t mostInTable = 16'384;  ///< milliseconds

/// The most different long durations that are kept; further ones count as the next shorter one.
constexpr std::size_t mostApart = 50'000;

/// The most kinds of misses, and of stages, that are counted separately; a hook has far fewer.
constexpr std::size_t mostKinds = 256;
constexpr const char* otherKinds = "other";

void count(std::map<std::string, std::int64_t>& misses, std::string_view field) {
  std::string kind(field);
  if (misses.size() >= mostKinds && !misses.contains(kind)) kind = otherKinds;
  ++misses[kind];
}

Quantiles& stageOf(SlotFigures& slot, std::string_view name) {
  for (auto& [known, times] : slot.stages) {
    if (known == name) return times;
  }
  const bool isFull = slot.stages.size() >= mostKinds;
  if (isFull && name != otherKinds) return stageOf(slot, otherKinds);
  slot.stages.emplace_back(name, Quantiles());
  return slot.stages.back().second;
}

}  // namespace

void Quantiles::add(std::int64_t milliseconds) {
  ++count_;
  longest_ = std::max(longest_, milliseconds);
  if (milliseconds < mostInTable) {
    const auto place = static_cast<std::size_t>(milliseconds);
    if (place >= short_.size()) short_.resize(place + 1);
    ++short_[place];
    return;
  }
  const auto next = long_.upper_bound(milliseconds);
  const bool isFull = long_.size() >= mostApart && next != long_.begin();
  ++long_[isFull ? std::prev(next)->first : milliseconds];
}

template <typename Visit>
void Quantiles::visitInOrder(Visit visit) const {
  for (std::size_t duration = 0; duration < short_.size(); ++duration) {
    if (!visit(static_cast<std::int64_t>(duration), short_[duration])) return;
  }
  for (const auto& [duration, times] : long_) {
    if (!visit(duration, times)) return;
  }
}

std::int64_t Quantiles::percentile(std::int64_t percent) const {
  constexpr std::int64_t whole = 100;
  const std::int64_t rank = (count_ * percent + whole - 1) / whole;
  std::int64_t found = 0;
  std::int64_t before = 0;
  visitInOrder([&](std::int64_t duration, std::int64_t times) {
    if (times > 0) found = duration;
    before += times;
    return before < rank;
  });
  return found;
}

std::int64_t Quantiles::countBetween(std::int64_t from, std::int64_t to) const {
  std::int64_t between = 0;
  visitInOrder([&](std::int64_t duration, std::int64_t times) {
    if (duration >= from && duration < to) between += times;
    return duration < to;
  });
  return between;
}

void LogFigures::add(const LogLine& line) {
  SlotFigures& slot = slots[line.slot.empty() ? "all" : std::string(line.slot)];
  if (line.value("rules") == "1") ++slot.withRules;
  if (line.count("cards") > 0) ++slot.withCards;
  if (line.count("trimmed") > 0) ++slot.trimmed;
  slot.whole.add(line.milliseconds);
  whole.add(line.milliseconds);
  for (const LogLine::Stage& stage : line.stages) {
    stageOf(slot, stage.name).add(stage.milliseconds);
  }
  bool hasMissed = false;
  for (const std::string_view field : line.fields) {
    if (!LogLine::isMiss(field)) continue;
    count(slot.misses, field);
    hasMissed = true;
  }

  first = std::min(first.value_or(line.when), line.when);
  last = std::max(last.value_or(line.when), line.when);
  Day& day = days[std::chrono::floor<std::chrono::days>(line.when)];
  day.whole.add(std::min(line.milliseconds, longestOfDay));
  if (hasMissed) ++day.missed;
  if (days.size() > mostDays) days.erase(days.begin());
}

std::vector<std::pair<std::string_view, const SlotFigures*>> LogFigures::inOrder() const {
  constexpr std::array<const char*, 4> order{"all", "rules", "index", "recall"};
  std::vector<std::pair<std::string_view, const SlotFigures*>> shown;
  for (const char* const name : order) {
    const auto found = slots.find(name);
    if (found != slots.end()) shown.emplace_back(found->first, &found->second);
  }
  return shown;
}

std::vector<std::pair<std::string, std::int64_t>> LogFigures::misses() const {
  std::map<std::string, std::int64_t> sums;
  for (const auto& [name, slot] : slots) {
    for (const auto& [kind, times] : slot.misses) sums[kind] += times;
  }
  std::vector<std::pair<std::string, std::int64_t>> sorted(sums.begin(), sums.end());
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const auto& one, const auto& other) { return one.second > other.second; });
  return sorted;
}

}  // namespace quillstead::cli
