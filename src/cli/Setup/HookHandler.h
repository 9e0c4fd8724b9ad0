#pragma once

#include "cli/Places.h"
#include "cli/Setup/HookTable.h"
#include "support/JSON/Value.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <string>
#include <vector>

/// One of our handlers in a harness's settings.
namespace quillstead::cli::HookHandler {

/// How an existing handler runs our hook.
struct Run {
  std::string program;
  std::vector<std::string> arguments;
  bool isShellText;
  std::string assignments;  ///< of shell text
  bool setsLog;             ///< QUILLSTEAD_HOOK_LOG is among them
};

/// Absent when the handler runs something else, or runs ours through another program.
std::optional<Run> read(const JSONC::Document& document, const JSONC::Node& handler);

/// The value of "--slot"; empty when there is none.
std::string slotOf(const std::vector<std::string>& arguments);

/// What a handler should be.
struct Wanted {
  const HookTable& table;
  const HookEvent& event;
  std::size_t number;  ///< of the handler within the event
  const Programs& programs;

  [[nodiscard]] std::vector<std::string> arguments() const;
};

/// A new handler, with a timeout.
JSON::Object make(const Wanted& wanted);

/// Updates the handler at `path`: the program, its arguments, and a missing limit. The user's own
/// keys stay.
JSONC::Document update(JSONC::Document document, const JSONC::Path& path, const Wanted& wanted);

/// The same for the program only.
JSONC::Document updateProgram(JSONC::Document document, const JSONC::Path& path,
                              const Programs& programs);

}  // namespace quillstead::cli::HookHandler
