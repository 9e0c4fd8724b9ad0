#pragma once

#include "cli/Setup/HookTable.h"
#include "cli/Setup/Programs.h"
#include "support/JSON/Value.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <string>
#include <vector>

/// One handler of ours in a harness's settings.
namespace quillstead::cli::HookHandler {

/// How a handler that is there runs our hook.
struct Run {
  std::string program;
  std::vector<std::string> arguments;
  bool isShellText;
  std::string assignments;  ///< of shell text
  bool setsLog;             ///< so does QUILLSTEAD_HOOK_LOG among them
};

/// Absent when the handler runs something else, or ours by way of another program.
std::optional<Run> read(const JSONC::Document& document, const JSONC::Node& handler);

/// The value behind "--slot"; empty when there is none.
std::string slotOf(const std::vector<std::string>& arguments);

/// What a handler is to be.
struct Wanted {
  const HookTable& table;
  const HookEvent& event;
  std::size_t number;  ///< of the handler within the event
  const Programs& programs;

  [[nodiscard]] std::vector<std::string> arguments() const;
};

/// A new handler, with a timeout.
JSON::Object make(const Wanted& wanted);

/// The document with the handler at `path` brought up to date: the program, its arguments and a
/// limit that is missing. Keys of the user's stay.
JSONC::Document update(JSONC::Document document, const JSONC::Path& path, const Wanted& wanted);

/// Likewise, but the program only.
JSONC::Document updateProgram(JSONC::Document document, const JSONC::Path& path,
                              const Programs& programs);

}  // namespace quillstead::cli::HookHandler
