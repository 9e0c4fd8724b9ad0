#include "cli/Telemetry/LogFigures.h"

#include <algorithm>
#include <array>

namespace quillstead::cli {

namespace {

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
