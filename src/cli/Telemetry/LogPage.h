#pragma once

#include "cli/Telemetry/LogFigures.h"

#include <string>

/// What a log comes to, as a page with plots.
namespace quillstead::cli::LogPage {

/// One HTML document that loads nothing: for bright and dark screens, and for phones. `path`: the
/// log's.
std::string rendered(const LogFigures& figures, const std::string& path);

/// Writes the page to `file`, over what is there. False when that failed.
bool write(const std::string& file, const LogFigures& figures, const std::string& path);

}  // namespace quillstead::cli::LogPage
