#include "hook/Telemetry/Trail.h"

#include "support/Text/Text.h"

#include <algorithm>
#include <iterator>

namespace quillstead::hook {

void Trail::append(std::vector<std::string> fields) {
  std::move(fields.begin(), fields.end(), std::back_inserter(fields_));
}

void Trail::replace(std::string_view old, std::string_view field) {
  for (std::string& present : fields_) {
    if (present == old) present = field;
  }
}

std::string Trail::joined() const { return Text::joined(fields_, " "); }

std::string_view Trail::laneStatus(std::span<const std::string> fields, std::string_view key) {
  constexpr std::string_view miss = "MISS:";
  for (const std::string_view field : fields) {
    if (!field.starts_with(key) || !field.substr(key.size()).starts_with('=')) continue;
    const std::string_view value = field.substr(key.size() + 1);
    if (!value.starts_with(miss)) return "ok";
    return value.substr(miss.size()) == "timeout" ? "timeout" : "refused";
  }
  return "ok";
}

}  // namespace quillstead::hook
