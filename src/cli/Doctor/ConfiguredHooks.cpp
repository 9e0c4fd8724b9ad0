#include "cli/Doctor/ConfiguredHooks.h"

#include "cli/Places.h"
#include "cli/Setup/HookHandler.h"
#include "support/JSONC/Document.h"
#include "support/JSONC/Parser.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace quillstead::cli {

namespace {

using JSONC::Document;
using JSONC::Item;
using JSONC::Kind;
using JSONC::Node;

constexpr std::string_view programName = "quillstead-hook";

/// How a harness runs a shell command.
std::vector<std::string> shellFor(std::string_view harness, const std::string& text,
                                  const OS::Environment& environment) {
  const std::string_view own = environment.value("SHELL").value_or("");
  if (harness == "codex") {
    return {own.starts_with('/') ? std::string(own) : "/bin/sh", "-lc", text};
  }
  return {"/bin/sh", "-c", text};
}

/// The command with its log switched off, so that a trial run leaves no line in the user's log: the
/// last assignment of a variable counts.
std::string withoutLog(std::string text, const HookHandler::Run& run) {
  if (run.setsLog) text.insert(run.assignments.size(), "QUILLSTEAD_HOOK_LOG= ");
  return text;
}

/// The end of the string whose opening quote is at `begin`.
std::size_t endOfString(std::string_view text, std::size_t begin) {
  std::size_t place = begin + 1;
  while (place < text.size() && text[place] != '"') place += text[place] == '\\' ? 2U : 1U;
  return std::min(place + 1, text.size());
}

class Reader {
 public:
  Reader(std::string_view harness, const Document& document, const OS::Environment& environment)
      : harness_(harness), document_(document), environment_(environment) {}

  ConfiguredHooks read() {
    const Item* const hooks = document_.root() ? find(*document_.root(), "hooks") : nullptr;
    if (hooks != nullptr) {
      for (const Item& event : hooks->value.items) readEvent(event.key, event.value);
    }
    readEnvironment();
    return std::move(read_);
  }

 private:
  /// A list of handlers, or of groups of them.
  void readEvent(const std::string& event, const Node& list) {
    if (list.kind != Kind::array) return;
    for (const Item& item : list.items) {
      if (item.value.kind != Kind::object) continue;
      const Item* const group = find(item.value, "hooks");
      if (group != nullptr) {
        for (const Item& handler : group->value.items) readHandler(event, handler.value);
      } else {
        readHandler(event, item.value);
      }
    }
  }

  void readHandler(const std::string& event, const Node& handler) {
    if (handler.kind != Kind::object) return;
    const Item* const command = find(handler, "command");
    const auto text = command != nullptr ? document_.string(command->value) : std::nullopt;
    const auto run = HookHandler::read(document_, handler);
    if (!run) {
      const bool isByWay = document_.textOf(handler).find(programName) != std::string_view::npos;
      read_.hasForeignWays = read_.hasForeignWays || isByWay;
      return;
    }
    ConfiguredHook hook{.event = event,
                        .slot = HookHandler::slotOf(run->arguments),
                        .program = run->program,
                        .command = {},
                        .told = *text};
    for (const std::string& argument : run->arguments) hook.told.append("\n").append(argument);
    if (run->isShellText) {
      hook.command = shellFor(harness_, withoutLog(*text, *run), environment_);
    } else {
      hook.command = {run->program};
      if (run->program.find('/') == std::string::npos) {
        hook.command.front() = onPath(run->program, environment_).value_or(run->program);
      }
      hook.command.insert(hook.command.end(), run->arguments.begin(), run->arguments.end());
    }
    read_.hooks.push_back(std::move(hook));
  }

  void readEnvironment() {
    const Item* const variables = document_.root() ? find(*document_.root(), "env") : nullptr;
    if (variables == nullptr || harness_ != "claude-code") return;
    for (const Item& variable : variables->value.items) {
      const auto value = document_.string(variable.value);
      if (value) read_.environment.push_back(variable.key + "=" + *value);
    }
  }

  std::string_view harness_;
  const Document& document_;
  const OS::Environment& environment_;
  ConfiguredHooks read_;
};

}  // namespace

ConfiguredHooks ConfiguredHooks::read(std::string_view harness, const std::string& text,
                                      const OS::Environment& environment) {
  const auto document = Document::read(text);
  const auto* const taken = std::get_if<Document>(&document);
  return taken != nullptr ? Reader(harness, *taken, environment).read() : ConfiguredHooks();
}

ConfiguredHooks ConfiguredHooks::readPlugin(const std::string& text,
                                            const OS::Environment& environment) {
  constexpr std::string_view before = "QUILLSTEAD_HOOK_BIN || \"";
  std::string program(environment.value("QUILLSTEAD_HOOK_BIN").value_or(""));
  const std::size_t begin = text.find(before);
  if (program.empty() && begin != std::string::npos) {
    const std::size_t quote = begin + before.size() - 1;
    program = JSONC::unescaped(text.substr(quote, endOfString(text, quote) - quote));
  }
  if (program.empty()) program = programName;
  const std::string found = program.find('/') == std::string::npos
                                ? onPath(program, environment).value_or(program)
                                : program;
  ConfiguredHooks read;
  read.hooks.push_back({.event = "chat.message",
                        .slot = {},
                        .program = found,
                        .command = {found, "--harness", "opencode"},
                        .told = found});
  read.hooks.push_back({.event = "PreToolUse",
                        .slot = "pretool",
                        .program = found,
                        .command = {found, "--harness", "opencode", "--slot", "pretool"},
                        .told = found});
  return read;
}

}  // namespace quillstead::cli
