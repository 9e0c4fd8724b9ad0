#include "cli/Doctor/HarnessChecks.h"

#include "cli/Doctor/ConfiguredHooks.h"
#include "cli/Doctor/HookRuns.h"
#include "cli/ProjectTop.h"
#include "cli/Setup/CodexConfigHooks.h"
#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/Harnesses.h"
#include "support/JSONC/Document.h"
#include "support/OS/Paths.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace quillstead::cli::HarnessChecks {

namespace {

/// The directories of personal memory that a harness gives to the hook and to the server. If they
/// differ, what the agent writes is not recalled.
namespace MemoryHome {

constexpr std::string_view variable = "QUILLSTEAD_HOME";

/// The value after an equals sign: in quotes, or up to a space.
std::string valueAt(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  if (text.empty()) return {};
  const bool isQuoted = text.front() == '"' || text.front() == '\'';
  if (!isQuoted) return std::string(text.substr(0, text.find_first_of(" \t\n")));
  return std::string(text.substr(1, text.find(text.front(), 1) - 1));
}

/// The value of the variable in "NAME=value" or "NAME = value"; absent when `text` does not set it.
std::optional<std::string> setIn(std::string_view text) {
  for (std::size_t at = text.find(variable); at != std::string_view::npos;
       at = text.find(variable, at + 1)) {
    std::string_view rest = text.substr(at + variable.size());
    while (rest.starts_with(' ')) rest.remove_prefix(1);
    if (rest.starts_with('=')) return valueAt(rest.substr(1));
  }
  return std::nullopt;
}

std::string elsewhere(const ConfiguredHooks& configured, const OS::Environment& environment) {
  for (const std::string& entry : configured.environment) {
    if (const auto value = setIn(entry)) return *value;
  }
  return std::string(environment.value(variable).value_or(""));
}

/// The value in a server's entry in JSON settings.
std::optional<std::string> setInEntry(std::string_view harness, const std::string& content) {
  const auto document = JSONC::Document::read(content);
  const auto* const taken = std::get_if<JSONC::Document>(&document);
  if (taken == nullptr) return std::nullopt;
  const bool isOpenCode = harness == "opencode";
  const std::array<JSONC::Step, 4> path{
      JSONC::Step(std::string(isOpenCode ? "mcp" : "mcpServers")),
      JSONC::Step(std::string("quillstead")),
      JSONC::Step(std::string(isOpenCode ? "environment" : "env")),
      JSONC::Step(std::string(variable))};
  const JSONC::Node* const value = taken->at(path);
  return value != nullptr ? taken->string(*value) : std::nullopt;
}

/// QUILLSTEAD_HOME for the hooks: from their commands or the settings, else from our environment;
/// empty when it is not set.
std::string ofHooks(const ConfiguredHooks& configured, const OS::Environment& environment) {
  for (const ConfiguredHook& hook : configured.hooks) {
    if (const auto value = setIn(hook.told)) return *value;
  }
  return elsewhere(configured, environment);
}

/// The same for the server, whose entry is in a file with this content: from the entry, else from
/// the settings, else from our environment.
std::string ofServer(std::string_view harness, const std::optional<std::string>& content,
                     const ConfiguredHooks& configured, const OS::Environment& environment) {
  const std::string text = content.value_or("");
  if (harness == "codex") {
    if (const auto value = setIn(text)) return *value;
    // Codex passes on only the variables that the entry names.
    const bool isHandedOn = text.find(variable) != std::string::npos;
    return isHandedOn ? elsewhere(configured, environment) : std::string();
  }
  const auto value = setInEntry(harness, text);
  return value ? *value : elsewhere(configured, environment);
}

}  // namespace MemoryHome

std::string installFor(const std::string& harness) { return "quillstead install " + harness; }

/// A settings file, compared with what install would make of it.
struct Compared {
  std::optional<std::string> text;  ///< absent: there is no file, or it cannot be read
  Findings findings;
};

Compared compare(const Harnesses::Target& target, const std::string& what, bool isNeeded) {
  Compared compared;
  const auto read = ConfigFile::read(target.path);
  if (const auto* const problem = std::get_if<ConfigFile::Problem>(&read)) {
    compared.findings.fail(target.path + " " + problem->what, "correct the file");
    return compared;
  }
  compared.text = std::get<ConfigFile::Content>(read).bytes;
  const std::string fix = installFor(std::string(target.harness));
  const EditOutcome outcome = target.install(compared.text);
  if (const auto* const complaint = std::get_if<JSONC::Complaint>(&outcome)) {
    compared.findings.fail(target.path + ":" + std::to_string(complaint->line) + ":" +
                               std::to_string(complaint->column) + ": " + complaint->what,
                           "correct the file, then: " + fix);
    return compared;
  }
  const auto& edited = std::get<Edited>(outcome);
  if (!edited.hadOurs && isNeeded) {
    compared.findings.fail(target.path + " has no " + what + " of ours", fix);
  } else if (!edited.hadOurs && compared.text && edited.text == compared.text) {
    compared.findings.warn(target.path + " has another " + what +
                               " in the place of ours, which install leaves as it is",
                           "if it is not yours, remove it, then: " + fix);
  } else if (!edited.hadOurs) {
    compared.findings.warn(target.path + " has no " + what + " of ours", fix);
  } else if (edited.text != compared.text) {
    compared.findings.warn("what " + target.path + " says of ours is not up to date", fix);
  }
  return compared;
}

bool isPlugin(const std::string& harness) { return harness == "opencode"; }

/// The hooks that a file of the harness has; none when there is no such file.
ConfiguredHooks hooksIn(const std::string& harness, const std::string& file,
                        const Context& context) {
  auto text = ConfigFile::textOf(file);
  if (text && file.ends_with(".toml")) text = CodexConfigHooks::asJSON(*text);
  if (!text) return {};
  return isPlugin(harness) ? ConfiguredHooks::readPlugin(*text, context.environment)
                           : ConfiguredHooks::read(harness, *text, context.environment);
}

/// What a prompt or a tool call needs and the settings do not have.
void findMissing(const ConfiguredHooks& configured, Findings& findings, const std::string& fix) {
  bool answersPrompts = false;
  bool answersTools = false;
  for (const ConfiguredHook& hook : configured.hooks) {
    (hook.isPretool() ? answersTools : answersPrompts) = true;
  }
  if (configured.hasForeignWays) {
    findings.warn("one entry runs the hook through another program, and is left as it is", "");
    return;
  }
  if (configured.hooks.empty()) return;  // told already
  if (!answersPrompts) findings.fail("no entry answers a prompt", fix);
  if (!answersTools) findings.fail("no entry answers before a tool call", fix);
}

/// The files that the harness loads hooks from beside that which install changes: the project's,
/// and Codex's other one.
std::vector<std::string> otherFiles(const std::string& harness, const Context& context) {
  const std::string here = OS::canonicalPath(".").value_or("/");
  const std::string top = ProjectTop::withGit().value_or(here);
  if (harness == "claude-code") {
    return {top + "/.claude/settings.json", top + "/.claude/settings.local.json"};
  }
  if (harness == "codex") {
    const std::string& own = context.places.codexDirectory;
    const std::string ofProject = top + "/.codex";
    if (OS::canonicalPath(own) == OS::canonicalPath(ofProject)) return {own + "/config.toml"};
    return {own + "/config.toml", ofProject + "/hooks.json", ofProject + "/config.toml"};
  }
  if (harness == "cursor") return {top + "/.cursor/hooks.json"};
  return {top + "/.opencode/plugins/quillstead.js"};
}

/// Claude Code runs no hooks at all when one of its files says so.
void findSwitchedOff(const std::string& harness, const std::string& path, const Context& context,
                     Findings& findings) {
  if (harness != "claude-code") return;
  std::vector<std::string> files = otherFiles(harness, context);
  files.insert(files.begin(), path);
  for (const std::string& file : files) {
    const auto text = ConfigFile::textOf(file);
    const auto read = JSONC::Document::read(text.value_or(""));
    const auto* const document = std::get_if<JSONC::Document>(&read);
    if (document == nullptr || !document->root()) continue;
    const JSONC::Item* const all = find(*document->root(), "disableAllHooks");
    if (all == nullptr || document->textOf(all->value) != "true") continue;
    findings.fail(file + " switches all hooks off", "take disableAllHooks out of it");
    return;
  }
}

/// Some harnesses do not start a server whose entry says so.
void findServerSwitchedOff(const Harnesses::Target& target, Compared& server) {
  if (!target.isSwitchedOff || !server.text || !target.isSwitchedOff(*server.text)) return;
  server.findings.warn(
      target.path + " switches the server off, so the agent cannot search memory or add to it",
      "set enabled to true in its entry");
}

/// Whether both bring the same: one without a slot brings what all of them do.
bool bringTheSame(const ConfiguredHook& one, const ConfiguredHook& other) {
  return one.event == other.event &&
         (one.slot == other.slot || one.slot.empty() || other.slot.empty());
}

/// Whether any of the hooks brings what one before it does.
bool areAnyTwice(const std::vector<ConfiguredHook>& hooks) {
  for (auto hook = hooks.begin(); hook != hooks.end(); ++hook) {
    const bool isTwice = std::any_of(hooks.begin(), hook, [&](const ConfiguredHook& earlier) {
      return bringTheSame(earlier, *hook);
    });
    if (isTwice) return true;
  }
  return false;
}

/// Whether a hook of another file brings what one of these does. Claude Code runs what is the same
/// at two levels only once.
bool isAddedTo(const std::vector<ConfiguredHook>& own, const ConfiguredHook& hook,
               bool runsSameOnce) {
  const auto isSame = [&](const ConfiguredHook& other) { return other.told == hook.told; };
  if (runsSameOnce && std::any_of(own.begin(), own.end(), isSame)) return false;
  return std::any_of(own.begin(), own.end(),
                     [&](const ConfiguredHook& other) { return bringTheSame(other, hook); });
}

Check doubled(const std::string& harness, const std::string& path, const ConfiguredHooks& own,
              const Context& context) {
  Findings findings;
  if (areAnyTwice(own.hooks)) {
    findings.warn(path + " has entries of ours twice", installFor(harness));
  }
  std::vector<ConfiguredHook> seen = own.hooks;
  for (const std::string& file : otherFiles(harness, context)) {
    if (OS::canonicalPath(file) == OS::canonicalPath(path)) continue;
    const std::vector<ConfiguredHook> others = hooksIn(harness, file, context).hooks;
    const bool comesTwice =
        std::any_of(others.begin(), others.end(), [&](const ConfiguredHook& hook) {
          return isAddedTo(seen, hook, harness == "claude-code");
        });
    seen.insert(seen.end(), others.begin(), others.end());
    if (!comesTwice) continue;
    findings.warn(file + " has our entries too, so memory comes twice",
                  "remove our entries from " + file);
  }
  return findings.check(harness + ".double", "each entry is there once");
}

/// The user's own hooks for Codex in the file that has its server.
ConfiguredHooks hooksOfUserElsewhere(const std::string& harness, const Context& context) {
  if (harness != "codex") return {};
  return hooksIn(harness, context.places.codexDirectory + "/config.toml", context);
}

Findings leftToUser(const Harnesses::Target& target) {
  Findings findings;
  findings.warn(target.path + " has our hooks, which install cannot update there",
                "remove them from it, then: " + installFor(std::string(target.harness)));
  return findings;
}

/// The hook and the server have to remember in the same place.
void findTwoHomes(const std::string& harness, Compared& server, const ConfiguredHooks& configured,
                  const Context& context) {
  if (!server.text || configured.hooks.empty()) return;
  const std::string ofHooks = MemoryHome::ofHooks(configured, context.environment);
  const std::string ofServer =
      MemoryHome::ofServer(harness, server.text, configured, context.environment);
  if (ofHooks == ofServer) return;
  const auto named = [](const std::string& home) { return home.empty() ? "nothing" : home; };
  server.findings.warn("QUILLSTEAD_HOME is " + named(ofHooks) + " for the hook and " +
                           named(ofServer) +
                           " for the server: what the agent saves is not recalled",
                       "set it to the same value for both, or for neither");
}

}  // namespace

std::vector<Check> run(const std::string& harness, const Context& context, const Programs& programs,
                       const hook::Deadline& deadline) {
  const std::vector<Harnesses::Target> targets =
      Harnesses::targets(harness, context.places, programs);
  const std::string& path = targets.front().path;
  Compared hooks = compare(targets.front(), isPlugin(harness) ? "plugin" : "hooks", true);
  ConfiguredHooks configured = hooksIn(harness, path, context);
  const Check twice = doubled(harness, path, configured, context);
  const ConfiguredHooks elsewhere = hooksOfUserElsewhere(harness, context);
  if (configured.hooks.empty() && !elsewhere.hooks.empty()) {
    configured = elsewhere;
    hooks.findings = leftToUser(targets.back());
  }
  findMissing(configured, hooks.findings, installFor(harness));
  findSwitchedOff(harness, path, context, hooks.findings);

  Compared server = compare(targets.back(), "server", false);
  findTwoHomes(harness, server, configured, context);
  findServerSwitchedOff(targets.back(), server);
  return {hooks.findings.check(harness + ".hooks", path + ": our entries are up to date"),
          server.findings.check(harness + ".server",
                                targets.back().path + ": our server is up to date"),
          HookRuns::run(harness, configured, context, deadline), twice};
}

}  // namespace quillstead::cli::HarnessChecks
