#pragma once

#include "cli/Description.h"
#include "cli/Doctor.h"
#include "cli/Init.h"
#include "cli/Log.h"
#include "cli/Recall.h"
#include "cli/Setup/FileChanges.h"
#include "cli/Texts.h"
#include "cli/Trust.h"

#include <span>
#include <string>
#include <variant>
#include <vector>

/// Reads the command line.
namespace quillstead::cli::CommandLine {

/// The options of the command to run.
using Command = std::variant<Doctor::Options, Init::Options, Log::Options, Recall::Options,
                             SetupOptions, Texts::Options, Trust::Options>;

/// No command to run: the command line asks for help or the version, or is wrong.
struct Answer {
  std::string output;  ///< for standard output; may be empty
  std::string error;   ///< for standard error; may be empty
  int status;          ///< the exit status
};

using Outcome = std::variant<Command, Answer>;

/// `arguments`: without the program's path.
Outcome parse(std::span<char* const> arguments);

/// The description of the command line.
ProgramText description();

/// The same, and those of the hook and the server.
std::vector<ProgramText> descriptions();

}  // namespace quillstead::cli::CommandLine
