#include "cli/Log.h"

#include "cli/Context.h"
#include "cli/Telemetry/LogFile.h"
#include "cli/Telemetry/LogFollow.h"
#include "cli/Telemetry/LogPage.h"
#include "cli/Telemetry/LogReport.h"

#include <charconv>
#include <cstdlib>

namespace quillstead::cli::Log {

namespace {

using Clock = std::chrono::system_clock;

/// The earliest time that is included.
LogLine::Time beginning(const Options& options) {
  const auto age = Log::age(options.since);
  if (!age) return LogLine::Time::min();
  return std::chrono::floor<std::chrono::milliseconds>(Clock::now()) - *age;
}

/// Absent when the log could not be read to its end.
std::optional<LogFigures> figuresOf(const OS::Descriptor& log, LogLine::Time beginning) {
  LogFigures figures;
  LogLine line;
  LogFile::Lines lines([&](std::string_view text, bool isWhole) {
    ++figures.lines;
    if (!isWhole || !line.read(text)) {
      ++figures.foreign;
    } else if (line.when < beginning) {
      ++figures.older;
    } else {
      figures.add(line);
    }
  });
  if (!LogFile::forEachLine(log, lines)) return std::nullopt;
  lines.finish();
  return figures;
}

int noLog(const LogPlace& place, Console& console) {
  if (place.isOff) {
    console.complain("the log is switched off: QUILLSTEAD_HOOK_LOG is set and empty");
    return EXIT_FAILURE;
  }
  std::string looked;
  for (const std::string& path : place.candidates) {
    looked.append(looked.empty() ? "" : ", ").append(path);
  }
  console.complain("there is no log. Looked for: " + looked);
  return EXIT_FAILURE;
}

}  // namespace

int run(const Options& options, const Context& context) {
  Console& console = context.console;
  const LogPlace place = LogPlace::find(context, LogPlace::named(context.places));
  OS::Descriptor log;
  std::string path;
  for (std::size_t at = 0; at < place.candidates.size() && !log.isOpen(); ++at) {
    path = place.candidates[at];
    log = LogFile::open(path);
  }
  if (!log.isOpen()) return noLog(place, console);
  if (options.follow) return LogFollow::run(std::move(log), path, console);

  const auto figures = figuresOf(log, beginning(options));
  if (!figures) {
    console.complain(path + ": cannot be read");
    return EXIT_FAILURE;
  }
  if (!options.page.empty() && !LogPage::write(options.page, *figures, path)) {
    console.complain(options.page + ": cannot be written");
    return EXIT_FAILURE;
  }
  if (options.json) {
    console.print(LogReport::json(*figures));
  } else if (!options.page.empty()) {
    console.print(options.page + ": written\n");
  } else {
    console.print(LogReport::text(*figures, path, console));
  }
  return EXIT_SUCCESS;
}

std::optional<std::chrono::seconds> age(std::string_view text) {
  constexpr std::size_t longest = 9;  // no overflow even in weeks
  if (text.size() < 2 || text.size() > longest || text.front() < '0' || text.front() > '9') {
    return std::nullopt;
  }
  const std::string_view digits = text.substr(0, text.size() - 1);
  std::int64_t number = 0;
  const auto [stopped, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || stopped != digits.data() + digits.size()) return std::nullopt;
  switch (text.back()) {
    case 's':
      return std::chrono::seconds(number);
    case 'm':
      return std::chrono::minutes(number);
    case 'h':
      return std::chrono::hours(number);
    case 'd':
      return std::chrono::days(number);
    case 'w':
      return std::chrono::weeks(number);
    default:
      return std::nullopt;
  }
}

}  // namespace quillstead::cli::Log
