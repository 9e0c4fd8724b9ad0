#include "cli/Places.h"

#include "cli/InstalledLog.h"
#include "server/UserPlaces.h"
#include "support/OS/Paths.h"

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

}  // namespace quillstead::cli
