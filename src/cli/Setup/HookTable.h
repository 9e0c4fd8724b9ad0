#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// How a harness's settings describe hooks.
enum class HookForm {
  programs,       ///< groups of handlers, each a program and its arguments
  shellGroups,    ///< groups of handlers, each a line of shell text
  shellHandlers,  ///< handlers without groups, each a line of shell text
};

/// The handlers of one event.
struct HookEvent {
  std::string_view name;
  std::optional<std::string> matcher;             ///< absent: none
  std::vector<std::string_view> earlierMatchers;  ///< those that earlier versions wrote
  /// For each handler, its arguments after "--harness NAME".
  std::vector<std::vector<std::string_view>> handlers;
  std::optional<int> contextLimit;  ///< "additionalContextLimit"
};

/// All our handlers for a harness.
struct HookTable {
  std::string_view harness;
  HookForm form;
  std::vector<HookEvent> events;
  bool isTimeoutFirst = false;  ///< a new handler has its timeout first
};

const HookTable& claudeCodeHooks();
const HookTable& codexHooks();
const HookTable& cursorHooks();

/// The same, with handlers that show that we added the file's "version".
const HookTable& cursorHooksWithVersion();

}  // namespace quillstead::cli
