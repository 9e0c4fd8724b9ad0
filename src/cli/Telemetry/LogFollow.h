#pragma once

#include "cli/Console.h"
#include "cli/Telemetry/LogLine.h"
#include "support/OS/Descriptor.h"

#include <string>
#include <string_view>

/// New lines of a log as they come.
namespace quillstead::cli::LogFollow {

/// Prints each line that is appended to the log from now on, made readable, until the output is
/// closed or a signal ends the process. Begins anew when the file is cut or replaced. Returns the
/// exit status.
int run(OS::Descriptor log, const std::string& path, Console& console);

/// A line of the hook's in words: "14:03:07  recall      47 ms  rules, 3 cards". The time is that
/// of the user's time zone.
std::string readable(const LogLine& line, const Console& console);

}  // namespace quillstead::cli::LogFollow
