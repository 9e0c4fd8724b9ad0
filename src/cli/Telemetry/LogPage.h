#pragma once

#include "cli/Telemetry/LogFigures.h"

#include <string>

/// Statistics of a log, as a page with plots.
namespace quillstead::cli::LogPage {

/// One HTML document that loads nothing, for light and dark mode and for phones. `path`: the log's.
std::string rendered(const LogFigures& figures, const std::string& path);

/// Writes the page to `file` and replaces its content. False on failure.
bool write(const std::string& file, const LogFigures& figures, const std::string& path);

}  // namespace quillstead::cli::LogPage
