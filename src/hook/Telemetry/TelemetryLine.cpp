#include "hook/Telemetry/TelemetryLine.h"

#include "support/OS/Descriptor.h"
#include "support/OS/Paths.h"

#include <cstdint>

namespace quillstead::hook::TelemetryLine {

namespace {

/// `number` with leading zeros up to `digits` digits, and what stands behind it.
void appendNumber(std::string& text, std::int64_t number, std::size_t digits, char separator) {
  const std::string plain = std::to_string(number);
  if (plain.size() < digits) text.append(digits - plain.size(), '0');
  text += plain;
  text += separator;
}

}  // namespace

std::string path(const OS::Environment& environment) {
  if (const auto log = environment.value("QUILLSTEAD_HOOK_LOG")) return std::string(*log);
  const auto home = environment.value("HOME");
  return (home ? std::string(*home) : OS::homeDirectory()) + "/Library/Logs/quillstead-hook.log";
}

std::string timestamp(std::chrono::system_clock::time_point now) {
  const auto day = std::chrono::floor<std::chrono::days>(now);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::milliseconds>(now - day));
  std::string text;
  appendNumber(text, static_cast<int>(date.year()), 4, '-');
  appendNumber(text, static_cast<unsigned>(date.month()), 2, '-');
  appendNumber(text, static_cast<unsigned>(date.day()), 2, 'T');
  appendNumber(text, time.hours().count(), 2, ':');
  appendNumber(text, time.minutes().count(), 2, ':');
  appendNumber(text, time.seconds().count(), 2, '.');
  appendNumber(text, time.subseconds().count(), 3, '+');
  return text + "00:00";
}

void append(std::string_view line, const std::string& path) {
  if (path.empty()) return;
  const OS::Descriptor log = OS::openForAppending(path.c_str());
  if (log.isOpen()) OS::writeNow(log.number(), line);
}

}  // namespace quillstead::hook::TelemetryLine
