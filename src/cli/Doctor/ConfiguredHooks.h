#pragma once

#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// A handler in a harness's settings that runs our hook.
struct ConfiguredHook {
  std::string event;                 ///< "UserPromptSubmit"
  std::string slot;                  ///< empty: rules and memory together
  std::string program;               ///< as the settings name it
  std::vector<std::string> command;  ///< what the harness starts: the program, or a shell
  std::string told;                  ///< its text in the settings, for comparing

  /// Whether it answers before a tool call, and not a prompt.
  [[nodiscard]] bool isPretool() const { return event == "PreToolUse" || event == "preToolUse"; }
};

/// Our hooks in a harness's settings.
struct ConfiguredHooks {
  std::vector<ConfiguredHook> hooks;
  bool hasForeignWays = false;           ///< one entry runs ours through another program
  std::vector<std::string> environment;  ///< "NAME=value": what the harness sets for its hooks

  /// `text`: the file's content. Empty when the harness could not read it. Shell text runs in the
  /// shell that the harness would use.
  static ConfiguredHooks read(std::string_view harness, const std::string& text,
                              const OS::Environment& environment);

  /// The hooks that OpenCode's plugin runs.
  static ConfiguredHooks readPlugin(const std::string& text, const OS::Environment& environment);
};

}  // namespace quillstead::cli
