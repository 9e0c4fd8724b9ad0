#pragma once

#include "cli/Places.h"
#include "cli/Setup/SettingsText.h"

#include <optional>
#include <string>

/// The settings files with our hooks. `before`: the file's content; absent when there is no file.
namespace quillstead::cli::HookSettings {

/// Claude Code's settings.json, with the log in "env" unless the user has set one.
EditOutcome installClaudeCode(const std::optional<std::string>& before, const Programs& programs);
EditOutcome uninstallClaudeCode(const std::string& before, const Programs& programs);

/// The log that Claude Code's settings name; absent when they name none or cannot be read.
std::optional<std::string> logNamedIn(const std::string& claudeCodeSettings);

/// Codex's hooks.json.
EditOutcome installCodex(const std::optional<std::string>& before, const Programs& programs);
EditOutcome uninstallCodex(const std::string& before);

/// Cursor's hooks.json, with its "version".
EditOutcome installCursor(const std::optional<std::string>& before, const Programs& programs);
EditOutcome uninstallCursor(const std::string& before);

}  // namespace quillstead::cli::HookSettings
