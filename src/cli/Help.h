#pragma once

#include "cli/Description.h"

#include <string>

/// The help texts.
namespace quillstead::cli::Help {

/// The help of a program, with its commands.
std::string of(const ProgramText& program);

/// The help of one command.
std::string of(const ProgramText& program, const CommandText& command);

/// The usage line of a command: "quillstead log [--since AGE] [--json]".
std::string usage(const std::string& path, const CommandText& command);

/// An option as the user writes it: "--since AGE".
std::string written(const OptionText& option);

}  // namespace quillstead::cli::Help
