#pragma once

#include <optional>
#include <span>

/// The server takes no arguments but "--version" and "--help".
namespace quillstead::CommandLine {

/// Answers arguments; the exit status, or absent when there are none and the server is to run.
std::optional<int> answer(std::span<char* const> arguments);

}  // namespace quillstead::CommandLine
