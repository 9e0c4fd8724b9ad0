#include "cli/SetUp.h"

#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/HookSettings.h"

#include <variant>

namespace quillstead::cli::SetUp {

std::optional<std::string> logNamed(const Places& places) {
  const auto read = ConfigFile::read(places.claudeDirectory + "/settings.json");
  const auto* const content = std::get_if<ConfigFile::Content>(&read);
  if (content == nullptr || !content->bytes) return std::nullopt;
  return HookSettings::logNamedIn(*content->bytes);
}

}  // namespace quillstead::cli::SetUp
