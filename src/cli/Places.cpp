#include "cli/Places.h"

#include "server/UserPlaces.h"
#include "support/OS/Paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string_view>

namespace quillstead::cli {

namespace {

/// The value of a variable; absent when it is unset or empty.
std::optional<std::string> chosen(const OS::Environment& environment, std::string_view name) {
  const auto value = environment.value(name);
  if (!value || value->empty()) return std::nullopt;
  return std::string(*value);
}

/// A base directory by the XDG rules: a relative path counts as unset.
std::string baseDirectory(const OS::Environment& environment, std::string_view name,
                          const std::string& byDefault) {
  const auto value = environment.value(name);
  return value && value->starts_with('/') ? std::string(*value) : byDefault;
}

/// The directory of the programs with a slash at its end: the one that a package names whose own
/// directory changes with each version, or that of the running program. Empty when it is not known.
std::string directoryOfPrograms(const OS::Environment& environment) {
  const auto named = environment.value("QUILLSTEAD_PROGRAMS");
  if (named && named->starts_with('/')) return std::string(*named) + "/";
  const auto own = OS::ownExecutable();
  const auto path = own ? OS::canonicalPath(*own) : std::nullopt;
  return path ? path->substr(0, path->rfind('/') + 1) : std::string();
}

}  // namespace

Places Places::find(const OS::Environment& environment) {
  const std::string home = server::UserPlaces::home(environment);
  const auto claude = chosen(environment, "CLAUDE_CONFIG_DIR");
  const std::string personal = server::UserPlaces::personalStore(environment);
  const std::string cacheInHome = home + "/" + std::string(OS::cacheDirectoryInHome());

  Places places;
  places.home = home;
  places.claudeDirectory = claude.value_or(home + "/.claude");
  places.claudeServers = claude.value_or(home) + "/.claude.json";
  places.codexDirectory = chosen(environment, "CODEX_HOME").value_or(home + "/.codex");
  places.cursorDirectory = home + "/.cursor";
  places.openCodeDirectory =
      baseDirectory(environment, "XDG_CONFIG_HOME", home + "/.config") + "/opencode";
  places.stateDirectory =
      baseDirectory(environment, "XDG_STATE_HOME", home + "/.local/state") + "/quillstead";
  places.cacheDirectory = baseDirectory(environment, "XDG_CACHE_HOME", cacheInHome) + "/quillstead";
  places.personalStore = personal.empty() ? home + "/.quillstead" : personal;
  places.programs = directoryOfPrograms(environment);
  places.hook = places.programs + "quillstead-hook";
  places.server = places.programs + "quillstead-mcp";
  places.log = installedLog(home, places.stateDirectory);
  return places;
}

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

std::optional<std::string> onPath(std::string_view name, const OS::Environment& environment) {
  std::string_view rest = environment.value("PATH").value_or("");
  while (!rest.empty()) {
    const std::string_view directory = rest.substr(0, rest.find(':'));
    rest.remove_prefix(std::min(rest.size(), directory.size() + 1));
    std::string candidate = std::string(directory).append("/").append(name);
    struct stat status {};
    const bool isProgram = directory.starts_with('/') && stat(candidate.c_str(), &status) == 0 &&
                           S_ISREG(status.st_mode) && access(candidate.c_str(), X_OK) == 0;
    if (isProgram) return candidate;
  }
  return std::nullopt;
}

}  // namespace quillstead::cli
