#pragma once

#include "cli/Places.h"
#include "support/OS/Environment.h"

#include <optional>
#include <string>

namespace quillstead::cli {

/// The programs that the settings name.
struct Programs {
  std::string hook;                ///< absolute
  std::string server;              ///< absolute
  std::optional<std::string> log;  ///< the path that entries name; absent: the hook's default
  bool isLogTheUsers = false;      ///< the user named it, so our entries do not
  std::string installedLog;        ///< the one that install sets up by default

  /// `logOfClaudeCode`: the log that Claude Code's settings name.
  static Programs of(const Places& places, const OS::Environment& environment,
                     const std::optional<std::string>& logOfClaudeCode);
};

}  // namespace quillstead::cli
