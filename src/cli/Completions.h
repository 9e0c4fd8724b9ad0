#pragma once

#include "cli/Description.h"

#include <string>

/// Scripts that let a shell complete a command line, made from its description.
namespace quillstead::cli::Completions {

enum class Shell { bash, zsh, fish };

/// The script for one program.
std::string of(const ProgramText& program, Shell shell);

}  // namespace quillstead::cli::Completions
