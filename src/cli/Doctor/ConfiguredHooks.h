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
  std::string program;               ///< as it is written
  std::vector<std::string> command;  ///< what the harness starts: the program, or a shell
  std::string told;                  ///< all that is written of it, for comparing

  /// Whether it answers before a tool call, and not a prompt.
  [[nodiscard]] bool isPretool() const { return event == "PreToolUse" || event == "preToolUse"; }
};

/// What settings that hold hooks say of ours.
struct ConfiguredHooks {
  std::vector<ConfiguredHook> hooks;
  bool hasForeignWays = false;           ///< one runs ours by way of another program
  std::vector<std::string> environment;  ///< "NAME=value", what the harness sets for its hooks

  /// `text`: the file's content. Nothing when it is not what the harness takes. The harness starts
  /// shell text with the shell that is usual for it.
  static ConfiguredHooks read(std::string_view harness, const std::string& text,
                              const OS::Environment& environment);

  /// The hooks that OpenCode's plugin runs.
  static ConfiguredHooks readPlugin(const std::string& text, const OS::Environment& environment);
};

}  // namespace quillstead::cli
