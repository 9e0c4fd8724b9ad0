#include "cli/Telemetry/LogPlace.h"

#include "hook/Telemetry/TelemetryLine.h"

namespace quillstead::cli {

LogPlace LogPlace::find(const Context& context, const std::optional<std::string>& named) {
  LogPlace place;
  const std::string ofHook = hook::TelemetryLine::path(context.environment);
  if (context.environment.value("QUILLSTEAD_HOOK_LOG")) {
    place.isOff = ofHook.empty();
    if (!place.isOff) place.candidates.push_back(ofHook);
    return place;
  }
  if (named && !named->empty()) place.candidates.push_back(*named);
  place.candidates.push_back(context.places.log);
  if (ofHook != context.places.log) place.candidates.push_back(ofHook);
  return place;
}

}  // namespace quillstead::cli
