#include "cli/Doctor/HarnessChecks.h"

#include "cli/Doctor/ConfiguredHooks.h"
#include "cli/Doctor/HookRuns.h"
#include "cli/Doctor/MemoryHome.h"
#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/Harnesses.h"
#include "support/OS/Paths.h"

#include <sys/stat.h>

#include <map>
#include <optional>
#include <set>
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
    compared.findings.fail(target.path + " " + problem->what, "see to the file");
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

ConfiguredHooks hooksIn(const std::string& harness, const std::string& text,
                        const Context& context) {
  return isPlugin(harness) ? ConfiguredHooks::readPlugin(text, context.environment)
                           : ConfiguredHooks::read(harness, text, context.environment);
}

/// What a prompt or a tool call needs and the settings do not have.
void findMissing(const ConfiguredHooks& configured, Findings& findings, const std::string& fix) {
  bool answersPrompts = false;
  bool answersTools = false;
  for (const ConfiguredHook& hook : configured.hooks) {
    (hook.isPretool() ? answersTools : answersPrompts) = true;
  }
  if (configured.hasForeignWays) {
    findings.warn("one entry runs the hook by way of another program, and is left as it is", "");
    return;
  }
  if (configured.hooks.empty()) return;  // told already
  if (!answersPrompts) findings.fail("no entry answers a prompt", fix);
  if (!answersTools) findings.fail("no entry answers before a tool call", fix);
}

/// The directory that is the project's top: that with .git above the current one, or that itself.
std::string projectTop() {
  std::string own = OS::canonicalPath(".").value_or("/");
  for (std::string at = own; !at.empty(); at.resize(at.rfind('/'))) {
    struct stat status {};
    if (stat((at + "/.git").c_str(), &status) == 0) return at;
    if (at.rfind('/') == std::string::npos) break;
  }
  return own;
}

/// The files of a project that its harness loads beside the user's own.
std::vector<std::string> projectFiles(const std::string& harness) {
  const std::string top = projectTop();
  if (harness == "claude-code") {
    return {top + "/.claude/settings.json", top + "/.claude/settings.local.json"};
  }
  if (harness == "codex") return {top + "/.codex/hooks.json"};
  if (harness == "cursor") return {top + "/.cursor/hooks.json"};
  return {top + "/.opencode/plugins/quillstead.js"};
}

/// The event and the slot of a hook: what it may be there for once.
std::string placeOf(const ConfiguredHook& hook) {
  constexpr std::string_view flag = "--slot";
  const std::size_t at = hook.told.find(flag);
  if (at == std::string::npos) return hook.event;
  const std::string_view rest = std::string_view(hook.told).substr(at + flag.size() + 1);
  return hook.event + " " + std::string(rest.substr(0, rest.find_first_of(" \n'\"")));
}

Check doubled(const std::string& harness, const std::string& path, const ConfiguredHooks& own,
              const Context& context) {
  Findings findings;
  std::map<std::string, std::string> seen;  // what each place says
  std::set<std::string> twice;
  for (const ConfiguredHook& hook : own.hooks) {
    if (!seen.emplace(placeOf(hook), hook.told).second) twice.insert(placeOf(hook));
  }
  if (!twice.empty()) findings.warn(path + " has entries of ours twice", installFor(harness));

  for (const std::string& file : projectFiles(harness)) {
    const auto read = ConfigFile::read(file);
    const auto* const content = std::get_if<ConfigFile::Content>(&read);
    if (!content || !content->bytes || OS::canonicalPath(file) == OS::canonicalPath(path)) continue;
    for (const ConfiguredHook& hook : hooksIn(harness, *content->bytes, context).hooks) {
      const auto other = seen.find(placeOf(hook));
      // Claude Code runs what is the same at two levels only once.
      const bool runsOnce =
          harness == "claude-code" && other != seen.end() && other->second == hook.told;
      if (other == seen.end() || runsOnce) continue;
      findings.warn(file + " has entries of ours as well, so memory comes twice",
                    "take ours out of " + file);
      break;
    }
  }
  return findings.check(harness + ".double", "each entry is there once");
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
                           " for the server: what the agent notes is not recalled",
                       "set it to the same for both, or for neither");
}

}  // namespace

std::vector<Check> run(const std::string& harness, const Context& context, const Programs& programs,
                       const hook::Deadline& deadline) {
  const std::vector<Harnesses::Target> targets =
      Harnesses::targets(harness, context.places, programs);
  const std::string& path = targets.front().path;
  Compared hooks = compare(targets.front(), isPlugin(harness) ? "plugin" : "hooks", true);
  const ConfiguredHooks configured =
      hooks.text ? hooksIn(harness, *hooks.text, context) : ConfiguredHooks();
  findMissing(configured, hooks.findings, installFor(harness));

  Compared server = compare(targets.back(), "server", false);
  findTwoHomes(harness, server, configured, context);
  return {hooks.findings.check(harness + ".hooks", path + ": our entries are up to date"),
          server.findings.check(harness + ".server",
                                targets.back().path + ": our server is up to date"),
          HookRuns::run(harness, configured, context, deadline),
          doubled(harness, path, configured, context)};
}

}  // namespace quillstead::cli::HarnessChecks
