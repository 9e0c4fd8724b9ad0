#include "cli/Setup/HookHandler.h"

#include "cli/Setup/ShellCommand.h"
#include "support/JSONC/Edit.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quillstead::cli::HookHandler {

namespace {

constexpr std::string_view programName = "quillstead-hook";
constexpr std::string_view logVariable = "QUILLSTEAD_HOOK_LOG";
constexpr int timeout = 5;  // seconds

bool isOurs(std::string_view program) {
  return program.substr(program.rfind('/') + 1) == programName;
}

JSONC::Path inside(JSONC::Path path, std::string_view key) {
  path.emplace_back(std::string(key));
  return path;
}

JSON::Value arrayOf(const std::vector<std::string>& strings) {
  JSON::Array array;
  for (const std::string& string : strings) array.emplace_back(string);
  return array;
}

std::string joined(std::string text, const std::vector<std::string>& words) {
  for (const std::string& word : words) text += " " + quotedWhereNeeded(word);
  return text;
}

/// The shell command that runs the hook.
std::string shellText(const std::string& assignments, const std::string& hook,
                      const std::vector<std::string>& arguments, bool isAlwaysQuoted) {
  return joined(assignments + (isAlwaysQuoted ? inSingleQuotes(hook) : quotedWhereNeeded(hook)),
                arguments);
}

/// The assignments, with the log's where the harness has no other way to set it.
std::string withLog(const std::string& assignments, bool setsLog, const Wanted& wanted) {
  const bool isNamed = wanted.table.form == HookForm::shellGroups && wanted.programs.log;
  if (!isNamed || setsLog) return assignments;
  return std::string(logVariable) + "=" + inSingleQuotes(*wanted.programs.log) + " " + assignments;
}

bool isQuotedAlways(const Wanted& wanted) { return wanted.table.form == HookForm::shellGroups; }

std::optional<std::vector<std::string>> stringsOf(const JSONC::Document& document,
                                                  const JSONC::Node& array) {
  std::vector<std::string> strings;
  for (const JSONC::Item& item : array.items) {
    auto string = document.string(item.value);
    if (!string) return std::nullopt;
    strings.push_back(*std::move(string));
  }
  return strings;
}

/// Updates a handler that is written as a program with arguments.
JSONC::Document updateProgramForm(JSONC::Document document, const JSONC::Path& path, const Run& run,
                                  const std::string& hook,
                                  const std::vector<std::string>& arguments) {
  if (run.program != hook) {
    document = JSONC::Edit::replace(document, inside(path, "command"), JSON::Value(hook));
  }
  if (run.arguments != arguments) {
    document = JSONC::Edit::replace(document, inside(path, "args"), arrayOf(arguments));
  }
  return document;
}

}  // namespace

std::optional<Run> read(const JSONC::Document& document, const JSONC::Node& handler) {
  const JSONC::Item* command = find(handler, "command");
  const auto text = command == nullptr ? std::nullopt : document.string(command->value);
  if (!text) return std::nullopt;
  if (const JSONC::Item* list = find(handler, "args")) {
    auto arguments = stringsOf(document, list->value);
    if (!isOurs(*text) || list->value.kind != JSONC::Kind::array || !arguments) return std::nullopt;
    return Run{.program = *text,
               .arguments = *std::move(arguments),
               .isShellText = false,
               .assignments = {},
               .setsLog = false};
  }
  auto parsed = ShellCommand::parse(*text);
  if (!parsed || !isOurs(parsed->program)) return std::nullopt;
  const bool setsLog = parsed->sets(logVariable);
  return Run{.program = std::move(parsed->program),
             .arguments = std::move(parsed->arguments),
             .isShellText = true,
             .assignments = std::move(parsed->assignments),
             .setsLog = setsLog};
}

std::string slotOf(const std::vector<std::string>& arguments) {
  constexpr std::string_view flag = "--slot";
  for (auto word = arguments.begin(); word != arguments.end(); ++word) {
    if (*word == flag && word + 1 != arguments.end()) return *(word + 1);
    if (word->starts_with("--slot=")) return word->substr(flag.size() + 1);
  }
  return {};
}

std::vector<std::string> Wanted::arguments() const {
  std::vector<std::string> words{"--harness", std::string(table.harness)};
  for (const std::string_view word : event.handlers[number]) words.emplace_back(word);
  return words;
}

JSON::Object make(const Wanted& wanted) {
  JSON::Object handler;
  const bool isProgram = wanted.table.form == HookForm::programs;
  if (wanted.table.form != HookForm::shellHandlers) handler.set("type", JSON::Value("command"));
  if (wanted.table.isTimeoutFirst) handler.set("timeout", JSON::Value(timeout));
  if (isProgram) {
    handler.set("command", JSON::Value(wanted.programs.hook));
    handler.set("args", arrayOf(wanted.arguments()));
  } else {
    handler.set("command", JSON::Value(shellText(withLog({}, false, wanted), wanted.programs.hook,
                                                 wanted.arguments(), isQuotedAlways(wanted))));
  }
  handler.set("timeout", JSON::Value(timeout));
  if (wanted.event.contextLimit) {
    handler.set("additionalContextLimit", JSON::Value(*wanted.event.contextLimit));
  }
  return handler;
}

JSONC::Document update(JSONC::Document document, const JSONC::Path& path, const Wanted& wanted) {
  const Run run = *read(document, *document.at(path));
  const std::string& hook = wanted.programs.hook;
  const std::vector<std::string> arguments = wanted.arguments();
  const std::string assignments = withLog(run.assignments, run.setsLog, wanted);
  if (!run.isShellText) {
    document = updateProgramForm(std::move(document), path, run, hook, arguments);
  } else if (wanted.table.form == HookForm::programs && assignments.empty()) {
    document = JSONC::Edit::replace(document, inside(path, "command"), JSON::Value(hook));
    document = JSONC::Edit::addMember(document, path, "args", arrayOf(arguments));
  } else if (run.program != hook || run.arguments != arguments || assignments != run.assignments) {
    const std::string text = shellText(assignments, hook, arguments, isQuotedAlways(wanted));
    document = JSONC::Edit::replace(document, inside(path, "command"), JSON::Value(text));
  }
  constexpr std::string_view limit = "additionalContextLimit";
  if (wanted.event.contextLimit && find(*document.at(path), limit) == nullptr) {
    document =
        JSONC::Edit::addMember(document, path, limit, JSON::Value(*wanted.event.contextLimit));
  }
  return document;
}

JSONC::Document updateProgram(JSONC::Document document, const JSONC::Path& path,
                              const Programs& programs) {
  const Run run = *read(document, *document.at(path));
  if (run.program == programs.hook) return document;
  const std::string text = run.isShellText
                               ? shellText(run.assignments, programs.hook, run.arguments, false)
                               : programs.hook;
  return JSONC::Edit::replace(document, inside(path, "command"), JSON::Value(text));
}

}  // namespace quillstead::cli::HookHandler
