#pragma once

#include "cli/Context.h"

#include <optional>
#include <string>
#include <vector>

namespace quillstead::cli {

/// Where the hook's log is looked for.
struct LogPlace {
  std::vector<std::string> candidates;  ///< the first one that exists counts
  bool isOff = false;                   ///< the environment switches the log off

  /// QUILLSTEAD_HOOK_LOG; else the log that install set up and the hook's default. `named`: the log
  /// that Claude Code's settings name, which install uses for all harnesses; absent: none.
  static LogPlace find(const Context& context, const std::optional<std::string>& named);
};

}  // namespace quillstead::cli
