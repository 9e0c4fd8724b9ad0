#pragma once

#include "cli/Console.h"
#include "cli/Telemetry/LogFigures.h"

#include <string>

/// Statistics of a log, for people and for scripts.
namespace quillstead::cli::LogReport {

/// `path`: the log's.
std::string text(const LogFigures& figures, const std::string& path, const Console& console);

/// One JSON object and a line end.
std::string json(const LogFigures& figures);

/// "2026-11-16", in UTC.
std::string day(std::chrono::sys_days day);

}  // namespace quillstead::cli::LogReport
