#include "cli/Telemetry/LogPage.h"

#include "cli/Telemetry/LogReport.h"
#include "cli/Telemetry/Plots.h"
#include "cli/Wording.h"
#include "support/OS/Descriptor.h"

#include <fcntl.h>

#include <string_view>

namespace quillstead::cli::LogPage {

namespace {

constexpr std::size_t mostKinds = 12;  ///< of misses, in the plot

constexpr std::string_view head = R"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; img-src data:">
<link rel="icon" href="data:,">
<title>Quillstead: the hook's log</title>
<style>
:root {
  --paper: #fcfbf8; --card: #ffffff; --ink: #22242a; --faint: #62666f; --line: #dddbd4;
  --median: #1f6f8b; --p95: #c05621; --runs: #1f6f8b; --miss: #b03a48;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #17191d; --card: #1f2227; --ink: #e8e6e1; --faint: #a2a6ae; --line: #363a41;
    --median: #5fb4d0; --p95: #f0a05a; --runs: #5fb4d0; --miss: #ee8490;
  }
}
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 1.2rem 1rem 3rem; max-width: 60rem; background: var(--paper);
  color: var(--ink); font: 1rem/1.5 system-ui, sans-serif; }
h1 { font-size: 1.5rem; margin: 0; }
h2 { font-size: 1.05rem; margin: 0 0 .6rem; }
p { margin: .3rem 0; color: var(--faint); overflow-wrap: anywhere; }
.plots { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 24rem), 1fr));
  gap: 1rem; margin: 1rem 0; }
section { background: var(--card); border: 1px solid var(--line); border-radius: .5rem;
  padding: .8rem; min-width: 0; }
svg { display: block; width: 100%; height: auto; }
svg text { font: 10.5px system-ui, sans-serif; fill: var(--faint); }
.grid { stroke: var(--line); stroke-width: 1; }
.median { fill: var(--median); } .p95 { fill: var(--p95); }
.runs { fill: var(--runs); } .miss { fill: var(--miss); }
polyline { fill: none; stroke-width: 1.2; opacity: .55; }
.median-line { stroke: var(--median); } .p95-line { stroke: var(--p95); }
.key { display: inline-block; width: .7em; height: .7em; border-radius: 50%; margin: 0 .3em 0 .8em; }
.key-median { background: var(--median); margin-left: 0; } .key-p95 { background: var(--p95); }
table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; }
th, td { text-align: right; padding: .25rem .4rem; border-bottom: 1px solid var(--line);
  font-size: .9rem; }
th:first-child, td:first-child { text-align: left; }
th { font-weight: 600; }
</style>
</head>
<body>
)";

std::string number(std::int64_t value) { return Wording::grouped(value); }

std::string paragraph(const std::string& text) { return "<p>" + text + "</p>\n"; }

std::string heading(const LogFigures& figures, const std::string& path) {
  std::string text = "<h1>The hook's log</h1>\n" + paragraph(Plots::escaped(path));
  std::string counts =
      number(figures.lines) + " lines, " + number(figures.whole.count()) + " prompts";
  if (figures.first) {
    counts += " from " + LogReport::day(std::chrono::floor<std::chrono::days>(*figures.first)) +
              " to " + LogReport::day(std::chrono::floor<std::chrono::days>(*figures.last));
  }
  if (figures.older > 0) counts += "; " + number(figures.older) + " lines are older";
  if (figures.foreign > 0) {
    counts += "; " + number(figures.foreign) + " are incomplete or not the hook's";
  }
  return text + paragraph(counts + ".");
}

std::string section(const std::string& title, const std::string& content) {
  return "<section>\n<h2>" + title + "</h2>\n" + content + "</section>\n";
}

std::string cells(const Quantiles& times) {
  constexpr std::int64_t median = 50;
  constexpr std::int64_t nearlyAll = 95;
  return "<td>" + number(times.percentile(median)) + "</td><td>" +
         number(times.percentile(nearlyAll)) + "</td><td>" + number(times.longest()) +
         "</td></tr>\n";
}

std::string tableOf(std::string_view name, const SlotFigures& slot) {
  std::string rows =
      "<table>\n<tr><th>milliseconds</th><th>median</th><th>95 %</th>"
      "<th>longest</th></tr>\n";
  rows += "<tr><td>whole run</td>" + cells(slot.whole);
  for (const auto& [stage, times] : slot.stages) {
    rows += "<tr><td>" + Plots::escaped(stage) + "</td>" + cells(times);
  }
  const std::string title =
      name == "all" ? "Rules and memory together" : "Slot " + std::string(name);
  return "<section>\n<h2>" + title + "</h2>\n" +
         paragraph(number(slot.prompts()) + " prompts: " + number(slot.withRules) +
                   " with rules, " + number(slot.withCards) + " with cards, " +
                   number(slot.trimmed) + " with cards cut.") +
         rows + "</table>\n</section>\n";
}

std::vector<std::pair<std::string, std::int64_t>> shownMisses(const LogFigures& figures) {
  auto misses = figures.misses();
  if (misses.size() <= mostKinds) return misses;
  std::int64_t rest = 0;
  for (std::size_t at = mostKinds - 1; at < misses.size(); ++at) rest += misses[at].second;
  misses.resize(mostKinds - 1);
  misses.emplace_back("others", rest);
  return misses;
}

}  // namespace

std::string rendered(const LogFigures& figures, const std::string& path) {
  std::string page(head);
  page += heading(figures, path);
  page += "<div class=\"plots\">\n";
  page += section("Time of a run, by day",
                  paragraph("Milliseconds. <span class=\"key key-median\"></span>median"
                            "<span class=\"key key-p95\"></span>95th percentile") +
                      Plots::days(figures.days));
  page += section("How long runs took",
                  paragraph("Number of runs, by their duration in milliseconds.") +
                      Plots::durations(figures.whole));
  page += section("Missing parts", paragraph("Prompts with missing parts, by part and reason.") +
                                       Plots::misses(shownMisses(figures)));
  for (const auto& [name, slot] : figures.inOrder()) page += tableOf(name, *slot);
  return page + "</div>\n</body>\n</html>\n";
}

bool write(const std::string& file, const LogFigures& figures, const std::string& path) {
  constexpr mode_t mode = 0644;
  const OS::Descriptor page(
      ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, mode));
  return page.isOpen() && OS::writeAll(page.number(), rendered(figures, path));
}

}  // namespace quillstead::cli::LogPage
