#pragma once

#include "cli/ChildRun.h"
#include "hook/Harness/HarnessAdapter.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// A prompt, tried out: the hook runs as a harness would run it, for no session, and its line for
/// the log comes to us and not into the log.
struct HookTrial {
  ChildEnd end;
  std::optional<std::string> context;  ///< what it hands to the harness; absent: nothing
  bool isReadable;                     ///< its answer is what the harness takes
  std::vector<std::string> trail;      ///< the fields of its line
  std::int64_t milliseconds;           ///< what its line says that the run took

  /// `command`: the hook and its arguments, or a shell that runs it. `environment`: as that of
  /// `ChildStart`, but for the log.
  static HookTrial run(const hook::HarnessAdapter& harness, std::vector<std::string> command,
                       std::string payload, const std::string& directory,
                       std::vector<std::string> environment);

  /// What a harness would send: a payload for a prompt in a directory.
  static std::string payload(const std::string& prompt, const std::string& directory);

  /// The text for the agent in an answer document of any harness; absent when there is none.
  static std::optional<std::string> contextIn(std::string_view answer);
};

}  // namespace quillstead::cli
