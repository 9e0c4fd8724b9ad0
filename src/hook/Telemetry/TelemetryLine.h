#pragma once

#include "support/OS/Environment.h"

#include <chrono>
#include <string>
#include <string_view>

/// The log: one line for every prompt that was served.
namespace quillstead::hook::TelemetryLine {

/// The log's path: QUILLSTEAD_HOOK_LOG as it is (empty: no log), else
/// "/Library/Logs/quillstead-hook.log" in the home directory.
std::string path(const OS::Environment& environment);

/// For example "2026-11-16T03:38:33.123+00:00": UTC with milliseconds, rounded down.
std::string timestamp(std::chrono::system_clock::time_point now);

/// Appends `line`, which ends in a line feed, in one write: lines of hooks that run at the same
/// time do not mix. Creates the file (mode 0644), but no directory. A line that cannot be written
/// is lost.
void append(std::string_view line, const std::string& path);

}  // namespace quillstead::hook::TelemetryLine
