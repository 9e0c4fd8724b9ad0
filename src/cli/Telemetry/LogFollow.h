#pragma once

#include "cli/Console.h"
#include "cli/Telemetry/LogLine.h"
#include "support/OS/Descriptor.h"

#include <string>
#include <string_view>

/// Shows new lines of a log as they are written.
namespace quillstead::cli::LogFollow {

/// Prints each line that is appended to the log from now on, in readable form, until the output is
/// closed or a signal ends the process. Starts again when the file is truncated or replaced.
/// Returns the exit status.
int run(OS::Descriptor log, const std::string& path, Console& console);

/// A log line in readable form: "14:03:07  recall      47 ms  rules, 3 cards". The time is in the
/// user's time zone.
std::string readable(const LogLine& line, const Console& console);

}  // namespace quillstead::cli::LogFollow
