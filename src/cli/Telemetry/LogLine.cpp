#include "cli/Telemetry/LogLine.h"

#include "hook/Harness/SlotFlag.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace quillstead::cli {

namespace {

constexpr std::size_t mostFields = 64;  ///< far more than the hook knows
constexpr std::size_t mostStages = 16;

bool isDigit(char character) { return character >= '0' && character <= '9'; }
bool isSmallLetter(char character) { return character >= 'a' && character <= 'z'; }

/// `text` as a number; absent when anything else is in it. A minus sign is allowed.
std::optional<std::int64_t> number(std::string_view text) {
  std::int64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return value;
}

/// Removes the text up to the next space, and the space, and returns the text.
std::string_view takeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find(' '));
  text.remove_prefix(std::min(text.size(), word.size() + 1));
  return word;
}

/// "2026-11-16T03:38:33.123+00:00"
std::optional<LogLine::Time> timeOf(std::string_view text) {
  constexpr std::string_view pattern = "0000-00-00T00:00:00.000+00:00";
  if (text.size() != pattern.size() || !text.ends_with("+00:00")) return std::nullopt;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    if (pattern[at] == '0' ? !isDigit(text[at]) : text[at] != pattern[at]) return std::nullopt;
  }
  const auto part = [text](std::size_t at, std::size_t size) {
    int value = 0;
    std::from_chars(text.data() + at, text.data() + at + size, value);
    return value;
  };
  const std::chrono::year_month_day date{std::chrono::year(part(0, 4)),
                                         std::chrono::month(static_cast<unsigned>(part(5, 2))),
                                         std::chrono::day(static_cast<unsigned>(part(8, 2)))};
  const int hours = part(11, 2);
  const int minutes = part(14, 2);
  const int seconds = part(17, 2);
  if (!date.ok() || hours > 23 || minutes > 59 || seconds > 60) return std::nullopt;
  return std::chrono::sys_days(date) + std::chrono::hours(hours) + std::chrono::minutes(minutes) +
         std::chrono::seconds(seconds) + std::chrono::milliseconds(part(20, 3));
}

/// "47ms"
std::optional<std::int64_t> duration(std::string_view text) {
  if (!text.ends_with("ms")) return std::nullopt;
  const auto value = number(text.substr(0, text.size() - 2));
  return value && *value >= 0 ? value : std::nullopt;
}

bool isStageName(std::string_view name) {
  constexpr std::size_t longest = 16;
  return !name.empty() && name.size() <= longest &&
         std::all_of(name.begin(), name.end(), isSmallLetter);
}

bool isPrintable(char character) { return character > ' ' && character <= '~'; }

/// "key=value"
bool isField(std::string_view word) {
  const std::size_t equals = word.find('=');
  return equals != std::string_view::npos && equals > 0 && equals + 1 < word.size() &&
         std::all_of(word.begin(), word.end(), isPrintable);
}

/// Parses "parse 0 rules 12 residual 5". True when stages and residual add up to the whole.
bool readStages(std::string_view text, std::int64_t whole, std::vector<LogLine::Stage>& stages) {
  constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max() / 64;
  std::int64_t rest = whole;
  while (stages.size() < mostStages) {
    const std::string_view name = takeWord(text);
    const auto value = number(takeWord(text));
    if (!isStageName(name) || !value || *value > longest) return false;
    if (name == "residual") return text.empty() && *value == rest;
    if (*value < 0) return false;
    rest -= *value;
    stages.push_back({.name = name, .milliseconds = *value});
  }
  return false;
}

}  // namespace

bool LogLine::read(std::string_view line) {
  constexpr std::string_view bar = " | ";
  constexpr std::string_view slotKey = "slot=";
  fields.clear();
  stages.clear();
  slot = {};

  const std::size_t end = line.find(bar);
  if (end == std::string_view::npos) return false;
  std::string_view told = line.substr(0, end);
  const auto time = timeOf(takeWord(told));
  const auto whole = time ? duration(takeWord(told)) : std::nullopt;
  if (!whole) return false;
  when = *time;
  milliseconds = *whole;

  if (told.starts_with(slotKey)) {
    slot = takeWord(told).substr(slotKey.size());
    const auto known = hook::SlotFlag::named(slot);
    if (!known || *known == hook::HookSlot::pretool) return false;
  }
  while (!told.empty()) {
    fields.push_back(takeWord(told));
    if (!isField(fields.back()) || fields.size() > mostFields) return false;
  }
  return readStages(line.substr(end + bar.size()), milliseconds, stages);
}

std::optional<std::string_view> LogLine::value(std::string_view key) const {
  for (const std::string_view field : fields) {
    if (field.starts_with(key) && field.substr(key.size()).starts_with('=')) {
      return field.substr(key.size() + 1);
    }
  }
  return std::nullopt;
}

std::int64_t LogLine::count(std::string_view key) const {
  const auto text = value(key);
  return text ? std::max<std::int64_t>(number(*text).value_or(0), 0) : 0;
}

bool LogLine::isMiss(std::string_view field) {
  return field.substr(field.find('=') + 1).starts_with("MISS:");
}

}  // namespace quillstead::cli
