#include "cli/SetUp.h"

#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/HookSettings.h"

namespace quillstead::cli::SetUp {

std::optional<std::string> logNamed(const Places& places) {
  const auto settings = ConfigFile::textOf(places.claudeDirectory + "/settings.json");
  return settings ? HookSettings::logNamedIn(*settings) : std::nullopt;
}

}  // namespace quillstead::cli::SetUp
