#pragma once

#include "support/OS/Environment.h"

#include <string>

namespace quillstead::cli {

/// Paths that depend only on the environment. They are absolute when HOME is. The files need not
/// exist.
struct Places {
  std::string home;             ///< HOME, or what the system says when it is not set or empty
  std::string claudeDirectory;  ///< CLAUDE_CONFIG_DIR, or ~/.claude
  std::string claudeServers;    ///< .claude.json: in CLAUDE_CONFIG_DIR when that is set, else in ~
  std::string codexDirectory;   ///< CODEX_HOME, or ~/.codex
  std::string cursorDirectory;  ///< ~/.cursor
  std::string openCodeDirectory;  ///< opencode under XDG_CONFIG_HOME, or under ~/.config
  std::string stateDirectory;     ///< quillstead under XDG_STATE_HOME, or under ~/.local/state
  std::string cacheDirectory;     ///< quillstead under XDG_CACHE_HOME, or where the system has it
  std::string personalStore;      ///< QUILLSTEAD_HOME, or ~/.quillstead
  std::string programs;  ///< QUILLSTEAD_PROGRAMS, or the directory of the running program, links
                         ///< followed; empty: unknown
  std::string hook;      ///< quillstead-hook there
  std::string server;    ///< quillstead-mcp there
  std::string log;       ///< the log that install sets up; on macOS the hook's own default

  static Places find(const OS::Environment& environment);
};

}  // namespace quillstead::cli
