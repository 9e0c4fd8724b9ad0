#include "cli/Setup/Programs.h"

#include "cli/InstalledLog.h"

namespace quillstead::cli {

Programs Programs::of(const Places& places, const OS::Environment& environment,
                      const std::optional<std::string>& logOfClaudeCode) {
  Programs programs{.hook = places.hook,
                    .server = places.server,
                    .log = {},
                    .isLogTheUsers = false,
                    .installedLog = places.log};
  const auto named = environment.value("QUILLSTEAD_HOOK_LOG");
  programs.isLogTheUsers = named.has_value();
  if (named) {
    programs.log = *named;
  } else if (logOfClaudeCode) {
    programs.log = logOfClaudeCode;
  } else if (isInstalledLogNamed()) {
    programs.log = places.log;
  }
  return programs;
}

}  // namespace quillstead::cli
