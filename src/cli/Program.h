#pragma once

#include "support/OS/Environment.h"

#include <span>

/// One run of the command for people.
namespace quillstead::cli::Program {

/// Runs the command, on the process's standard streams. `arguments`: without the program's path.
/// Returns the exit status: 0 done, or all is well; 1 something is wrong or was left alone; 2 the
/// command line is wrong.
int run(std::span<char* const> arguments, const OS::Environment& environment);

}  // namespace quillstead::cli::Program
