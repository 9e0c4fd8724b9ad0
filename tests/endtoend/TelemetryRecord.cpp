#include "TelemetryRecord.h"

#include "Workspace.h"

#include <algorithm>

namespace quillstead {

namespace {

constexpr std::size_t none = std::string::npos;
constexpr std::string_view timestampForm = "0000-00-00T00:00:00.000+00:00";

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool hasTimestampForm(std::string_view text) {
  std::string form(text);
  std::replace_if(form.begin(), form.end() - 6, isDigit, '0');  // the offset is always the same
  return form == timestampForm;
}

/// A decimal integer without needless zeros.
bool isNumber(std::string_view text) {
  constexpr std::size_t longest = 18;
  if (text.empty() || text.size() > longest || (text.size() > 1 && text[0] == '0')) return false;
  return std::all_of(text.begin(), text.end(), isDigit);
}

/// Fields of a key, "=" and a value, with single blanks between them.
bool isTrail(std::string_view text) {
  const auto fields = piecesOf(text, ' ');
  const auto isField = [](std::string_view field) {
    const std::size_t equals = field.find('=');
    return equals != none && equals > 0 && equals + 1 < field.size();
  };
  return !fields.empty() && !text.ends_with(' ') &&
         std::all_of(fields.begin(), fields.end(), isField);
}

}  // namespace

std::string TelemetryRecord::stageNames() const {
  std::string names;
  for (const Stage& stage : stages) names += (names.empty() ? "" : " ") + stage.name;
  return names;
}

std::optional<std::int64_t> TelemetryRecord::stage(std::string_view name) const {
  for (const Stage& stage : stages) {
    if (stage.name == name) return stage.milliseconds;
  }
  return std::nullopt;
}

bool TelemetryRecord::addsUp() const {
  std::int64_t sum = residual;
  for (const Stage& stage : stages) sum += stage.milliseconds;
  return sum == totalMilliseconds;
}

std::optional<TelemetryRecord> telemetryRecord(const std::string& line) {
  const std::size_t timeEnd = line.find(' ');
  const std::size_t totalEnd = line.find("ms ");
  const std::size_t trailEnd = line.find(" | ");
  const std::size_t residual = line.rfind(" residual ");
  if (timeEnd != timestampForm.size() || totalEnd == none || trailEnd == none || residual == none ||
      totalEnd < timeEnd || trailEnd < totalEnd || residual < trailEnd + 2) {
    return std::nullopt;
  }
  const std::string total = line.substr(timeEnd + 1, totalEnd - timeEnd - 1);
  const std::string rest = line.substr(residual + 10);
  TelemetryRecord record{.timestamp = line.substr(0, timeEnd),
                         .totalMilliseconds = isNumber(total) ? std::stoll(total) : -1,
                         .trail = line.substr(totalEnd + 3, trailEnd - totalEnd - 3),
                         .stages = {},
                         .residual = 0};
  const std::string digits = rest.substr(rest.starts_with('-') && rest != "-0" ? 1 : 0);
  if (!hasTimestampForm(record.timestamp) || !isNumber(total) || !isTrail(record.trail) ||
      !isNumber(digits)) {
    return std::nullopt;
  }
  record.residual = std::stoll(rest);
  const auto words = piecesOf(line.substr(trailEnd + 3, residual - trailEnd - 3), ' ');
  if (words.empty() || words.size() % 2 != 0) return std::nullopt;
  for (std::size_t at = 0; at < words.size(); at += 2) {
    if (words[at].empty() || !isNumber(words[at + 1])) return std::nullopt;
    record.stages.push_back({.name = words[at], .milliseconds = std::stoll(words[at + 1])});
  }
  return record;
}

}  // namespace quillstead
