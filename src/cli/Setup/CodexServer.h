#pragma once

#include "cli/Setup/Edited.h"

#include <optional>
#include <string>

/// The memory server's table in Codex's config.toml, edited line by line. The file is read with a
/// TOML library before and after: an edit that would change anything else is refused, and the file
/// left alone. What was added goes again without a byte left of it: a line end goes before the
/// table, which is an empty line or, where the last line had none, its end; a file that was made
/// begins with the table.
namespace quillstead::cli::CodexServer {

/// `before`: the file's content; absent when there is no file.
EditOutcome install(const std::optional<std::string>& before, const std::string& server);

EditOutcome uninstall(const std::string& before);

}  // namespace quillstead::cli::CodexServer
