#include "cli/Doctor/HookRuns.h"

#include "cli/HookTrial.h"
#include "cli/Places.h"
#include "cli/Telemetry/LogLine.h"
#include "cli/Wording.h"
#include "hook/Harness/Harnesses.h"
#include "support/JSON/Reader.h"
#include "support/OS/Paths.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>
#include <vector>

namespace quillstead::cli::HookRuns {

namespace {

constexpr std::string_view prompt = "Is the memory at hand? (asked by quillstead doctor)";

// A harness waits 5 s for an answer; then the program may be asked for its version.
constexpr std::chrono::seconds versionTime(1);
constexpr hook::Seconds longestTry{6};

/// A call of one of our tools, as it is reported before it runs.
std::string toolPayload(const std::string& harness) {
  if (harness == "cursor") {
    return R"({"conversation_id":"doctor","session_id":"doctor","hook_event_name":"preToolUse","tool_name":"MCP:grab","tool_input":{"title":"x"}})";
  }
  return R"({"session_id":"doctor","hook_event_name":"PreToolUse","agent_id":"doctor","tool_name":"mcp__quillstead__grab","tool_input":{"title":"x"}})";
}

/// One try after the other, and what came out.
class Tries {
 public:
  Tries(const std::string& harness, const ConfiguredHooks& configured, const Context& context)
      : harness_(*hook::Harnesses::named(harness)),
        context_(context),
        directory_(OS::canonicalPath(".").value_or("/")),
        fix_("quillstead install " + harness) {
    std::vector<std::string> changes = configured.environment;
    std::erase_if(changes, [](const std::string& entry) {
      return entry.starts_with("QUILLSTEAD_HOOK_LOG=");
    });
    changes.emplace_back("QUILLSTEAD_HOOK_LOG");  // a try leaves no line there
    changes.emplace_back("CURSOR_VERSION");
    environment_ = ChildRun::changed(context.environment, changes);
  }

  /// False when it hangs, so that no more should be tried.
  bool tryHook(const ConfiguredHook& hook) {
    const std::string payload = hook.isPretool()
                                    ? toolPayload(std::string(harness_.name()))
                                    : HookTrial::payload(std::string(prompt), directory_);
    const HookTrial trial =
        HookTrial::run(harness_, hook.command, payload, directory_, environment_);
    longest_ = std::max(longest_, trial.end.took);
    if (trial.end.how == ChildEnd::How::timedOut) {
      findings.fail(hook.program + " does not answer within " +
                        std::to_string(trial.end.took.count()) + " ms",
                    "see server.start");
      return false;
    }
    if (const auto flaw = flawOf(trial.end)) {
      findings.fail(hook.program + " " + *flaw, fix_);
    } else if (hook.isPretool() && trial.end.output.find("_quillstead_") == std::string::npos) {
      findings.fail("a tool call goes unstamped", fix_);
    } else if (hook.isPretool() && !isTaken(trial.end.output)) {
      findings.fail("codex drops the stamp of a tool call: the entry lacks --decision allow", fix_);
    } else if (!hook.isPretool() && !trial.isReadable) {
      findings.fail(hook.event + ": the answer is not what the harness takes: " +
                        Wording::plain(Text::trimmed(trial.end.output)).substr(0, 60),
                    "keep the shell's profile from printing anything, then: " + fix_);
    } else {
      findMisses(trial);
    }
    return true;
  }

  void tryVersion(const std::string& program) {
    const std::string path = program.find('/') == std::string::npos
                                 ? onPath(program, context_.environment).value_or(program)
                                 : program;
    const ChildEnd end = ChildRun::run({.command = {path, "--version"},
                                        .environment = environment_,
                                        .directory = {},
                                        .input = {},
                                        .limit = versionTime});
    if (end.how == ChildEnd::How::notStarted) return;  // told by the try
    const std::string told(Text::trimmed(end.output));
    if (told == "quillstead-hook " QUILLSTEAD_VERSION) return;
    const bool isAVersion = told.starts_with("quillstead-hook ");
    findings.warn(
        path + " is of " +
            (isAVersion ? "version " + Wording::plain(told.substr(16)) : "another version") +
            ", and this is " QUILLSTEAD_VERSION,
        fix_);
  }

  [[nodiscard]] std::int64_t longest() const { return longest_.count(); }

  Findings findings;

 private:
  /// Why a run is none; absent when it came to its end.
  static std::optional<std::string> flawOf(const ChildEnd& end) {
    constexpr int notExecutable = 126;  // by the shell's rules
    constexpr int notFound = 127;
    if (end.how == ChildEnd::How::notStarted) {
      return std::string("cannot be started: ") + std::strerror(end.status);
    }
    if (end.how == ChildEnd::How::signalled) {
      return "ends by signal " + std::to_string(end.status);
    }
    if (end.status == notFound) return "cannot be started: No such file or directory";
    if (end.status == notExecutable) return "cannot be started: Permission denied";
    if (end.status != 0) return "ends with status " + std::to_string(end.status);
    return std::nullopt;
  }

  /// Whether the harness takes the changed arguments of a call: Codex wants a decision beside them.
  [[nodiscard]] bool isTaken(const std::string& answer) const {
    if (harness_.name() != "codex") return true;
    const auto document = JSON::read(answer);
    const auto specific =
        document ? document->object().find("hookSpecificOutput").object() : std::nullopt;
    return specific && specific->find("permissionDecision").string() == "allow";
  }

  void findMisses(const HookTrial& trial) {
    for (const std::string& field : trial.trail) {
      if (!LogLine::isMiss(field)) continue;
      if (field.ends_with(":timeout")) {
        findings.fail("the server does not answer in time", "see server.start");
      } else if (!field.ends_with(":over-budget") && !field.ends_with(":no-span") &&
                 !field.starts_with("shortcut=")) {
        findings.fail("the server gives no answer", "see server.start");
      }
    }
  }

  const hook::HarnessAdapter& harness_;
  const Context& context_;
  std::string directory_;
  std::string fix_;
  std::vector<std::string> environment_;
  std::chrono::milliseconds longest_{0};
};

}  // namespace

Check run(const std::string& harness, const ConfiguredHooks& configured, const Context& context,
          const hook::Deadline& deadline) {
  const std::string id = harness + ".run";
  if (configured.hooks.empty()) {
    return skipped(id, "nothing to run");
  }
  Tries tries(harness, configured, context);
  std::set<std::string> programs;
  int tried = 0;
  for (const ConfiguredHook& hook : configured.hooks) {
    if (deadline.leash() < longestTry) break;
    ++tried;
    if (!tries.tryHook(hook)) break;
    if (programs.insert(hook.program).second) tries.tryVersion(hook.program);
  }
  const auto all = static_cast<int>(configured.hooks.size());
  if (tries.findings.empty() && tried < all) {
    return skipped(id, "no time was left to run " + Wording::counted(all - tried, "command"));
  }
  return tries.findings.check(id, Wording::counted(tried, "command") +
                                      " answered, the slowest in " +
                                      std::to_string(tries.longest()) + " ms");
}

}  // namespace quillstead::cli::HookRuns
