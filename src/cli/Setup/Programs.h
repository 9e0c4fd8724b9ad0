#pragma once

#include "cli/Places.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>

namespace quillstead::cli {

/// What the harnesses are told to run.
struct Programs {
  std::string hook;                ///< absolute
  std::string server;              ///< absolute
  std::optional<std::string> log;  ///< the path that entries name; absent: the hook finds it itself
  bool isLogTheUsers = false;      ///< the user has named it; absent from settings of ours
  std::string installedLog;        ///< the one that install sets up when nobody named another

  /// `logOfClaudeCode`: the one that Claude Code's settings name.
  static Programs of(const Places& places, const OS::Environment& environment,
                     const std::optional<std::string>& logOfClaudeCode);
};

}  // namespace quillstead::cli
