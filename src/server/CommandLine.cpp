#include "server/CommandLine.h"

#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace quillstead::CommandLine {

namespace {

constexpr std::string_view help =
    "quillstead-mcp: a memory server over plain Markdown files.\n"
    "It speaks the Model Context Protocol on its standard input and output, and is started by\n"
    "quillstead-hook or as an MCP server of an agent. It takes no arguments.";

}  // namespace

std::optional<int> answer(std::span<char* const> arguments) {
  if (arguments.empty()) return std::nullopt;
  const std::string_view first = arguments.front();
  if (first == "--version") {
    return OS::writeLine(STDOUT_FILENO, "quillstead-mcp " QUILLSTEAD_VERSION) ? EXIT_SUCCESS
                                                                              : EXIT_FAILURE;
  }
  if (first == "--help") {
    return OS::writeLine(STDOUT_FILENO, help) ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  OS::writeLine(STDERR_FILENO, help);
  constexpr int wrongUse = 2;
  return wrongUse;
}

}  // namespace quillstead::CommandLine
