#pragma once

#include "cli/Places.h"

#include <optional>
#include <string>

/// Reads the harnesses' settings, for commands that do not change them.
namespace quillstead::cli::SetUp {

/// The log that Claude Code's settings name; absent when they name none or cannot be read.
std::optional<std::string> logNamed(const Places& places);

}  // namespace quillstead::cli::SetUp
