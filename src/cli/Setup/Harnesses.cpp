#include "cli/Setup/Harnesses.h"

#include "cli/Setup/CodexConfigHooks.h"
#include "cli/Setup/CodexServer.h"
#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/HookSettings.h"
#include "cli/Setup/OpenCodePlugin.h"
#include "cli/Setup/ServerEntry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>
#include <variant>

namespace quillstead::cli::Harnesses {

namespace {

using Before = std::optional<std::string>;

bool isDirectory(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isProgram(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         access(path.c_str(), X_OK) == 0;
}

bool isOnPath(std::string_view name, const OS::Environment& environment) {
  std::string_view rest = environment.value("PATH").value_or("");
  while (!rest.empty()) {
    const std::string_view directory = rest.substr(0, rest.find(':'));
    rest.remove_prefix(std::min(rest.size(), directory.size() + 1));
    if (!directory.empty() && isProgram(std::string(directory).append("/").append(name))) {
      return true;
    }
  }
  return false;
}

Target serverTarget(std::string_view harness, std::string path, const ServerEntry::Where& where,
                    const Programs& programs) {
  return {.harness = harness,
          .path = std::move(path),
          .install =
              [where, &programs](const Before& before) {
                return ServerEntry::install(before, where, programs.server);
              },
          .uninstall =
              [where](const std::string& before) { return ServerEntry::uninstall(before, where); }};
}

std::vector<Target> claudeCode(const Places& places, const Programs& programs) {
  return {{.harness = "claude-code",
           .path = places.claudeDirectory + "/settings.json",
           .install =
               [&programs](const Before& before) {
                 return HookSettings::installClaudeCode(before, programs);
               },
           .uninstall =
               [&programs](const std::string& before) {
                 return HookSettings::uninstallClaudeCode(before, programs);
               }},
          serverTarget("claude-code", places.claudeServers,
                       {.keys = {"mcpServers", "quillstead"}, .form = ServerEntry::Form::withType},
                       programs)};
}

/// Hooks of ours in config.toml would run beside those that are added.
EditOutcome installCodexHooks(const Before& before, const std::string& config,
                              const Programs& programs) {
  EditOutcome outcome = HookSettings::installCodex(before, programs);
  const auto* const edited = std::get_if<Edited>(&outcome);
  const bool isNew = edited != nullptr && !edited->hadOurs;
  const auto others = isNew ? ConfigFile::textOf(config) : std::nullopt;
  if (others && CodexConfigHooks::ours(*others)) return Edited{.text = before, .hadOurs = false};
  return outcome;
}

EditOutcome uninstallFromCodexConfig(const std::string& before) {
  EditOutcome hooks = CodexConfigHooks::uninstall(before);
  auto* const edited = std::get_if<Edited>(&hooks);
  if (edited == nullptr || !edited->text) return hooks;
  EditOutcome both = CodexServer::uninstall(*edited->text);
  if (auto* const server = std::get_if<Edited>(&both)) {
    server->hadOurs = server->hadOurs || edited->hadOurs;
  }
  return both;
}

std::vector<Target> codex(const Places& places, const Programs& programs) {
  const std::string config = places.codexDirectory + "/config.toml";
  return {
      {.harness = "codex",
       .path = places.codexDirectory + "/hooks.json",
       .install = [&programs, config](
                      const Before& before) { return installCodexHooks(before, config, programs); },
       .uninstall = HookSettings::uninstallCodex},
      {.harness = "codex",
       .path = config,
       .install =
           [&programs](const Before& before) {
             return CodexServer::install(before, programs.server);
           },
       .uninstall = uninstallFromCodexConfig,
       .rest = CodexConfigHooks::ours,
       .isSwitchedOff = CodexServer::isSwitchedOff}};
}

std::vector<Target> cursor(const Places& places, const Programs& programs) {
  return {
      {.harness = "cursor",
       .path = places.cursorDirectory + "/hooks.json",
       .install =
           [&programs](const Before& before) {
             return HookSettings::installCursor(before, programs);
           },
       .uninstall = HookSettings::uninstallCursor},
      serverTarget("cursor", places.cursorDirectory + "/mcp.json",
                   {.keys = {"mcpServers", "quillstead"}, .form = ServerEntry::Form::withoutType},
                   programs)};
}

ServerEntry::Where inOpenCode() {
  return {.keys = {"mcp", "quillstead"}, .form = ServerEntry::Form::asArray};
}

bool hasServerOfOurs(const std::string& path) {
  const auto text = ConfigFile::textOf(path);
  const auto removed = text ? ServerEntry::uninstall(*text, inOpenCode()) : EditOutcome();
  const auto* const edited = std::get_if<Edited>(&removed);
  return edited != nullptr && edited->hadOurs;
}

/// A file whose entry is one too many.
Target doubledServer(const std::string& path) {
  const auto remove = [](const std::string& before) {
    return ServerEntry::uninstall(before, inOpenCode());
  };
  return {.harness = "opencode",
          .path = path,
          .install = [remove](const Before& before) { return remove(before.value_or("")); },
          .uninstall = remove};
}

/// OpenCode reads both files with servers. The user may have made the second one after ours was put
/// into the first.
std::vector<Target> openCode(const Places& places, const Programs& programs) {
  struct stat status {};
  const std::string plain = places.openCodeDirectory + "/opencode.json";
  const std::string withComments = places.openCodeDirectory + "/opencode.jsonc";
  const bool hasComments = lstat(withComments.c_str(), &status) == 0;
  const bool isInPlain = hasComments && hasServerOfOurs(plain);
  const bool isInBoth = isInPlain && hasServerOfOurs(withComments);
  std::vector<Target> targets{{.harness = "opencode",
                               .path = places.openCodeDirectory + "/plugins/quillstead.js",
                               .install =
                                   [&programs](const Before& before) {
                                     return OpenCodePlugin::install(before, programs.hook);
                                   },
                               .uninstall = OpenCodePlugin::uninstall}};
  if (isInBoth) targets.push_back(doubledServer(plain));
  const bool isCommentsChanged = hasComments && (isInBoth || !isInPlain);
  targets.push_back(
      serverTarget("opencode", isCommentsChanged ? withComments : plain, inOpenCode(), programs));
  targets.back().isSwitchedOff = [](const std::string& content) {
    return ServerEntry::isSwitchedOff(content, inOpenCode());
  };
  return targets;
}

}  // namespace

bool isThere(std::string_view harness, const Places& places, const OS::Environment& environment) {
  if (harness == "claude-code") {
    return isDirectory(places.claudeDirectory) || isOnPath("claude", environment);
  }
  if (harness == "codex") {
    return isDirectory(places.codexDirectory) || isOnPath("codex", environment);
  }
  if (harness == "cursor") {
    return isDirectory(places.cursorDirectory) || isOnPath("cursor", environment) ||
           isOnPath("cursor-agent", environment);
  }
  return isDirectory(places.openCodeDirectory) || isOnPath("opencode", environment);
}

std::vector<std::string> chosen(const std::vector<std::string>& named, const Places& places,
                                const OS::Environment& environment) {
  std::vector<std::string> harnesses;
  for (const std::string_view name : names) {
    const bool isNamed = std::find(named.begin(), named.end(), name) != named.end();
    if (isNamed || (named.empty() && isThere(name, places, environment))) {
      harnesses.emplace_back(name);
    }
  }
  return harnesses;
}

std::vector<Target> targets(std::string_view harness, const Places& places,
                            const Programs& programs) {
  if (harness == "claude-code") return claudeCode(places, programs);
  if (harness == "codex") return codex(places, programs);
  if (harness == "cursor") return cursor(places, programs);
  return openCode(places, programs);
}

std::vector<std::string> directories(std::string_view harness, const Places& places) {
  if (harness == "claude-code") return {places.claudeDirectory};
  if (harness == "codex") return {places.codexDirectory};
  if (harness == "cursor") return {places.cursorDirectory};
  return {places.openCodeDirectory + "/plugins", places.openCodeDirectory};
}

}  // namespace quillstead::cli::Harnesses
