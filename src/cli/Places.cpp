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

using server::UserPlaces::joined;
using server::UserPlaces::withoutLastSlashes;

/// The value of a variable; absent when it is unset or empty.
std::optional<std::string> chosen(const OS::Environment& environment, std::string_view name) {
  const auto value = environment.value(name);
  if (!value || value->empty()) return std::nullopt;
  return withoutLastSlashes(*value);
}

/// A base directory by the XDG rules: a relative path counts as unset.
std::string baseDirectory(const OS::Environment& environment, std::string_view name,
                          const std::string& byDefault) {
  const auto value = environment.value(name);
  return value && value->starts_with('/') ? withoutLastSlashes(*value) : byDefault;
}

/// The directory of the programs with a slash at its end: the one that a package names whose own
/// directory changes with each version, or that of the running program. Empty when it is not known.
std::string directoryOfPrograms(const OS::Environment& environment) {
  const auto named = environment.value("QUILLSTEAD_PROGRAMS");
  if (named && named->starts_with('/')) return joined(withoutLastSlashes(*named), "");
  const auto own = OS::ownExecutable();
  const auto path = own ? OS::canonicalPath(*own) : std::nullopt;
  return path ? path->substr(0, path->rfind('/') + 1) : std::string();
}

}  // namespace

Places Places::find(const OS::Environment& environment) {
  const std::string home = server::UserPlaces::home(environment);
  const auto claude = chosen(environment, "CLAUDE_CONFIG_DIR");
  const std::string personal = server::UserPlaces::personalStore(environment);
  const auto inHome = [&home](std::string_view name) { return joined(home, name); };
  const auto base = [&](std::string_view variable, std::string_view name) {
    return baseDirectory(environment, variable, inHome(name));
  };

  Places places;
  places.home = home;
  places.claudeDirectory = claude.value_or(inHome(".claude"));
  places.claudeServers = joined(claude.value_or(home), ".claude.json");
  places.codexDirectory = chosen(environment, "CODEX_HOME").value_or(inHome(".codex"));
  places.cursorDirectory = inHome(".cursor");
  places.openCodeDirectory = joined(base("XDG_CONFIG_HOME", ".config"), "opencode");
  places.stateDirectory = joined(base("XDG_STATE_HOME", ".local/state"), "quillstead");
  places.cacheDirectory = joined(base("XDG_CACHE_HOME", OS::cacheDirectoryInHome()), "quillstead");
  places.personalStore = personal.empty() ? inHome(".quillstead") : personal;
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
