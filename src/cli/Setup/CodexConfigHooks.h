#pragma once

#include "cli/Setup/SettingsText.h"
#include "support/JSONC/Document.h"

#include <optional>
#include <string>

/// Hooks in Codex's config.toml, which it runs beside those of its hooks.json. Install writes none
/// there and does not update those that are there.
namespace quillstead::cli::CodexConfigHooks {

/// The hooks in that file's content, as hooks.json would have them; absent when it has none, or
/// cannot be read.
std::optional<std::string> asJSON(const std::string& content);

/// Removes the hooks that run ours, and what only held them, where whole lines can be removed. The
/// others stay.
EditOutcome uninstall(const std::string& before);

/// What the user has to remove by hand: the first of the hooks that runs ours. Absent when none
/// does.
std::optional<JSONC::Complaint> ours(const std::string& content);

}  // namespace quillstead::cli::CodexConfigHooks
