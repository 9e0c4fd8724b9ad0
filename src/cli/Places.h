#pragma once

#include "support/OS/Environment.h"

#include <optional>
#include <string>
#include <string_view>

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

/// The absolute path of the program with that name on PATH; absent when there is none.
std::optional<std::string> onPath(std::string_view name, const OS::Environment& environment);

/// Where the hook's log goes when install has set the harnesses up: the hook's default place, or,
/// on systems where it has none, our state directory.
std::string installedLog(const std::string& home, const std::string& stateDirectory);

/// Whether the settings have to name it for the hook.
bool isInstalledLogNamed();

}  // namespace quillstead::cli
