#include "hook/Telemetry/StageClock.h"

namespace quillstead::hook {

void StageClock::record(std::string_view name, OS::MonotonicClock::time_point start) {
  const auto elapsed = OS::MonotonicClock::now() - start;
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(elapsed);
  stages_.push_back({.name = name, .milliseconds = milliseconds.count()});
}

std::optional<std::string> StageClock::segment(std::int64_t totalMilliseconds) const {
  if (stages_.empty()) return std::nullopt;
  std::string text;
  std::int64_t residual = totalMilliseconds;
  for (const Stage& stage : stages_) {
    text.append(stage.name).append(" ").append(std::to_string(stage.milliseconds)).append(" ");
    residual -= stage.milliseconds;
  }
  return text + "residual " + std::to_string(residual);
}

}  // namespace quillstead::hook
