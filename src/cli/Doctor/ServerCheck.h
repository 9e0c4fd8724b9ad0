#pragma once

#include "cli/Context.h"
#include "cli/Doctor/Check.h"

#include <chrono>

/// Checks that the memory server works.
namespace quillstead::cli::ServerCheck {

/// Starts the server that the hook would start, initialises it, and asks for its tools and the
/// rules. Takes at most `limit`.
Check run(const Context& context, std::chrono::milliseconds limit);

}  // namespace quillstead::cli::ServerCheck
