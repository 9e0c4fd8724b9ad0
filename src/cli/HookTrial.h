#pragma once

#include "cli/ChildRun.h"
#include "hook/Harness/HarnessAdapter.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::cli {

/// A trial run of the hook with a prompt. The hook runs as a harness would run it, without a
/// session, and we get its log line; the log does not.
struct HookTrial {
  ChildEnd end;
  std::optional<std::string> context;  ///< the text for the agent; absent: none
  bool isReadable;                     ///< the harness can read its answer
  std::vector<std::string> trail;      ///< the fields of its log line
  std::int64_t milliseconds;           ///< the time of the run, from its log line

  /// `command`: the hook and its arguments, or a shell that runs it. `environment`: as in
  /// `ChildStart`; the log's variable is replaced.
  static HookTrial run(const hook::HarnessAdapter& harness, std::vector<std::string> command,
                       std::string payload, const std::string& directory,
                       std::vector<std::string> environment);

  /// The payload that a harness sends for a prompt in a directory.
  static std::string payload(const std::string& prompt, const std::string& directory);

  /// The text for the agent in any harness's answer; absent when there is none.
  static std::optional<std::string> contextIn(std::string_view answer);
};

}  // namespace quillstead::cli
