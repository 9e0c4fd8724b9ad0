#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"

#include <chrono>

/// Whether the memory server works.
namespace quillstead::cli::ServerCheck {

/// Starts the server that the hook would start, shakes hands, has it list its tools and asks it for
/// the rules. Takes at most `limit`.
Check run(const Context& context, std::chrono::milliseconds limit);

}  // namespace quillstead::cli::ServerCheck
