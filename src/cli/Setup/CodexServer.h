#pragma once

#include "cli/Setup/SettingsText.h"

#include <optional>
#include <string>

/// The memory server's table in Codex's config.toml, edited line by line. A TOML library reads the
/// file before and after: an edit that would change anything else is refused. Removal leaves no
/// byte of what was added. For that, a line end is written before the table (an empty line, or the
/// missing end of the last line); a file that install created begins with the table.
namespace quillstead::cli::CodexServer {

/// `before`: the file's content; absent when there is no file.
EditOutcome install(const std::optional<std::string>& before, const std::string& server);

EditOutcome uninstall(const std::string& before);

/// Whether the file tells Codex not to start the server: `enabled = false`.
bool isSwitchedOff(const std::string& content);

}  // namespace quillstead::cli::CodexServer
