#pragma once

#include "support/OS/Environment.h"

#include <optional>
#include <span>

/// The server serves when it gets no arguments. For people there are "--version" or "-V", also with
/// "--verbose", "--help" or "-h", and "--trust DIRECTORY".
namespace quillstead::server::CommandLine {

/// Handles the arguments. Returns the exit status; absent when there are none and the server should
/// run.
std::optional<int> answer(std::span<char* const> arguments, const OS::Environment& environment);

}  // namespace quillstead::server::CommandLine
