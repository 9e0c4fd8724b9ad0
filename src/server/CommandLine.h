#pragma once

#include "support/OS/Environment.h"

#include <optional>
#include <span>

/// The server takes no arguments when it is to serve. Others are for people: "--version" or "-V",
/// "--help" or "-h", and "--trust DIRECTORY".
namespace quillstead::server::CommandLine {

/// Answers arguments; the exit status, or absent when there are none and the server is to run.
std::optional<int> answer(std::span<char* const> arguments, const OS::Environment& environment);

}  // namespace quillstead::server::CommandLine
