#pragma once

#include "support/JSONC/Document.h"

#include <optional>
#include <string>

/// Hooks in Codex's config.toml, which it runs beside those of its hooks.json. Install writes none
/// there, and leaves those that are there to the user.
namespace quillstead::cli::CodexConfigHooks {

/// The hooks in that file's content, as hooks.json would have them; absent when it has none, or
/// cannot be read.
std::optional<std::string> asJSON(const std::string& content);

/// What the user has to take out by hand: the first of the hooks that runs ours. Absent when none
/// does.
std::optional<JSONC::Complaint> ours(const std::string& content);

}  // namespace quillstead::cli::CodexConfigHooks
