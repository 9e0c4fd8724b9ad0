#include "cli/Setup/HookTable.h"

#include "hook/ParentTag.h"
#include "hook/SessionStamp.h"

namespace quillstead::cli {

namespace {

constexpr std::string_view ourTools = "mcp__quillstead__.*";
constexpr std::string_view ourToolsWithPlugins = "mcp__(plugin_.+_)?quillstead__.*";

std::string cursorTools() {
  std::string names;
  for (const std::string_view tool : hook::SessionStamp::tools) names.append(tool).append("|");
  return names.append(hook::ParentTag::tool);
}

}  // namespace

const HookTable& claudeCodeHooks() {
  static const HookTable table{
      .harness = "claude-code",
      .form = HookForm::programs,
      .events = {{.name = "UserPromptSubmit",
                  .matcher = {},
                  .earlierMatchers = {},
                  .handlers = {{"--slot", "rules"}, {"--slot", "index"}, {"--slot", "recall"}},
                  .contextLimit = {}},
                 {.name = "SubagentStart",
                  .matcher = {},
                  .earlierMatchers = {},
                  .handlers = {{"--slot", "rules", "--event", "SubagentStart"}},
                  .contextLimit = {}},
                 {.name = "PreToolUse",
                  .matcher = std::string(ourTools),
                  .earlierMatchers = {ourToolsWithPlugins},
                  .handlers = {{"--slot", "pretool"}},
                  .contextLimit = {}}}};
  return table;
}

const HookTable& codexHooks() {
  constexpr int wholeAnswer = 12'000;  // tokens; more than the hook's own limit in bytes holds
  static const HookTable table{
      .harness = "codex",
      .form = HookForm::shellGroups,
      .events = {{.name = "UserPromptSubmit",
                  .matcher = {},
                  .earlierMatchers = {},
                  .handlers = {{}},
                  .contextLimit = wholeAnswer},
                 {.name = "PreToolUse",
                  .matcher = std::string(ourTools),
                  .earlierMatchers = {ourToolsWithPlugins},
                  .handlers = {{"--slot", "pretool", "--decision", "allow"}},
                  .contextLimit = {}}}};
  return table;
}

const HookTable& cursorHooks() {
  static const HookTable table{.harness = "cursor",
                               .form = HookForm::shellHandlers,
                               .events = {{.name = "beforeSubmitPrompt",
                                           .matcher = {},
                                           .earlierMatchers = {},
                                           .handlers = {{}},
                                           .contextLimit = {}},
                                          {.name = "preToolUse",
                                           .matcher = cursorTools(),
                                           .earlierMatchers = {},
                                           .handlers = {{"--slot", "pretool"}},
                                           .contextLimit = {}}}};
  return table;
}

const HookTable& cursorHooksWithVersion() {
  static const HookTable table = [] {
    HookTable marked = cursorHooks();
    marked.isTimeoutFirst = true;
    return marked;
  }();
  return table;
}

}  // namespace quillstead::cli
