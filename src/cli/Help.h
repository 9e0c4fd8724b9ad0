#pragma once

#include "cli/Description.h"

#include <string>

/// The help that is printed.
namespace quillstead::cli::Help {

/// What a program does, and its commands.
std::string of(const ProgramText& program);

/// What one of its commands does.
std::string of(const ProgramText& program, const CommandText& command);

/// How a command is called: "quillstead log [--since AGE] [--json]".
std::string usage(const std::string& path, const CommandText& command);

/// An option as it is written: "--since AGE".
std::string written(const OptionText& option);

}  // namespace quillstead::cli::Help
