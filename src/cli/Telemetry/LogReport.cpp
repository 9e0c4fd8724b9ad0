#include "cli/Telemetry/LogReport.h"

#include "cli/Wording.h"
#include "hook/Telemetry/TelemetryLine.h"
#include "support/JSON/Writer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quillstead::cli::LogReport {

namespace {

constexpr std::int64_t median = 50;
constexpr std::int64_t nearlyAll = 95;

JSON::Object jsonOf(const Quantiles& times) {
  return JSON::objectOf({{"median", times.percentile(median)},
                         {"p95", times.percentile(nearlyAll)},
                         {"max", times.longest()}});
}

JSON::Object jsonOf(const SlotFigures& slot) {
  JSON::Object stages;
  for (const auto& [name, times] : slot.stages) stages.set(name, jsonOf(times));
  JSON::Object misses;
  for (const auto& [kind, times] : slot.misses) misses.set(kind, times);
  return JSON::objectOf({{"prompts", slot.prompts()},
                         {"with_rules", slot.withRules},
                         {"with_cards", slot.withCards},
                         {"trimmed", slot.trimmed},
                         {"ms", jsonOf(slot.whole)},
                         {"stages", std::move(stages)},
                         {"misses", std::move(misses)}});
}

std::string padded(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string row(std::string name, const std::array<std::string, 3>& cells) {
  constexpr std::size_t nameWidth = 12;
  constexpr std::size_t cellWidth = 10;
  name.resize(std::max(name.size(), nameWidth), ' ');
  std::string line = "  " + name;
  for (const std::string& cell : cells) line += padded(cell, cellWidth);
  return line + "\n";
}

std::string row(const std::string& name, const Quantiles& times) {
  return row(name,
             {Wording::grouped(times.percentile(median)),
              Wording::grouped(times.percentile(nearlyAll)), Wording::grouped(times.longest())});
}

std::string textOf(std::string_view name, const SlotFigures& slot, const Console& console) {
  const std::string title =
      name == "all" ? "Rules and memory together" : "Slot " + std::string(name);
  std::string text = "\n" + console.coloured(Colour::bold, title) + ": ";
  text += Wording::counted(slot.prompts(), "prompt") + ", " + Wording::grouped(slot.withRules) +
          " with rules, " + Wording::grouped(slot.withCards) + " with cards, " +
          Wording::grouped(slot.trimmed) + " with cards cut\n";
  text += console.coloured(Colour::faint, row("ms", {"median", "95 %", "longest"}));
  text += row("whole run", slot.whole);
  for (const auto& [stage, times] : slot.stages) text += row(stage, times);
  for (const auto& [kind, times] : slot.misses) {
    text.append("  ").append(console.coloured(Colour::yellow, kind));
    text.append("  ").append(Wording::grouped(times)).append("\n");
  }
  return text;
}

}  // namespace

std::string text(const LogFigures& figures, const std::string& path, const Console& console) {
  std::string text = path + ": " + Wording::counted(figures.lines, "line");
  if (figures.first) {
    text += ", " + day(std::chrono::floor<std::chrono::days>(*figures.first)) + " to " +
            day(std::chrono::floor<std::chrono::days>(*figures.last));
  }
  if (figures.older > 0) text += ", " + Wording::grouped(figures.older) + " of them older";
  if (figures.foreign > 0)
    text += ", " + Wording::grouped(figures.foreign) + " of them incomplete or not the hook's";
  text += "\n";
  const auto slots = figures.inOrder();
  for (const auto& [name, slot] : slots) text += textOf(name, *slot, console);
  return slots.empty() ? text + "No prompts.\n" : text;
}

std::string json(const LogFigures& figures) {
  JSON::Object slots;
  for (const auto& [name, slot] : figures.inOrder()) slots.set(name, jsonOf(*slot));
  return JSON::write(JSON::objectOf({{"lines", figures.lines},
                                     {"foreign", figures.foreign},
                                     {"slots", std::move(slots)}}),
                     JSON::Slashes::plain) +
         "\n";
}

std::string day(std::chrono::sys_days day) {
  constexpr std::size_t length = 10;
  return hook::TelemetryLine::timestamp(day).substr(0, length);
}

}  // namespace quillstead::cli::LogReport
