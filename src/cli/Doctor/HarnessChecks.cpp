#include "cli/Doctor/HarnessChecks.h"

#include "cli/Doctor/ConfiguredHooks.h"
#include "cli/Doctor/HookRuns.h"
#include "cli/Doctor/MemoryHome.h"
#include "cli/ProjectTop.h"
#include "cli/Setup/CodexConfigHooks.h"
#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/Harnesses.h"
#include "support/OS/Paths.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <variant>

namespace quillstead::cli::HarnessChecks {

namespace {

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

  Compared server = compare(targets.back(), "server", false);
  findTwoHomes(harness, server, configured, context);
  return {hooks.findings.check(harness + ".hooks", path + ": our entries are up to date"),
          server.findings.check(harness + ".server",
                                targets.back().path + ": our server is up to date"),
          HookRuns::run(harness, configured, context, deadline), twice};
}

}  // namespace quillstead::cli::HarnessChecks
