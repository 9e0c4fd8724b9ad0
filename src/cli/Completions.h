#pragma once

#include "cli/Description.h"

#include <string>

/// What a shell has to know to complete a command line, made of its description.
namespace quillstead::cli::Completions {

enum class Shell { bash, zsh, fish };

/// The script for one program.
std::string of(const ProgramText& program, Shell shell);

}  // namespace quillstead::cli::Completions
