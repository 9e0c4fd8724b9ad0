#include "server/CommandLine.h"

#include "server/LinkedLibraries.h"
#include "server/Store/Trust.h"
#include "support/OS/Descriptor.h"

#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>

namespace quillstead::server::CommandLine {

namespace {

constexpr std::string_view help =
    "quillstead-mcp: a memory server over plain Markdown files.\n"
    "\n"
    "quillstead-hook and coding agents start it, and speak the Model Context Protocol with it on\n"
    "its standard input and output. Then it takes no arguments. You need two commands:\n"
    "  quillstead install   sets up your coding agents to use it\n"
    "  quillstead doctor    says whether it works\n"
    "\n"
    "Options:\n"
    "  --trust DIRECTORY  use the memory of the projects in this directory and below it\n"
    "  -h, --help         print this\n"
    "  -V, --version      print the version; with --verbose also of what it is made of";

constexpr int wrongUse = 2;

int print(std::string_view text) {
  return OS::writeLine(STDOUT_FILENO, text) ? EXIT_SUCCESS : EXIT_FAILURE;
}

std::string version(std::span<char* const> more) {
  std::string text = "quillstead-mcp " QUILLSTEAD_VERSION;
  const bool isVerbose = more.size() == 1 && more.front() == std::string_view("--verbose");
  return isVerbose ? text + "\n" + LinkedLibraries::lines() : text;
}

int trust(const std::string& directory, const OS::Environment& environment) {
  const Trust::Outcome outcome = Trust::add(environment, directory);
  if (const auto* refused = std::get_if<Trust::Refused>(&outcome)) {
    OS::writeLine(STDERR_FILENO, "quillstead-mcp: " + refused->reason);
    return EXIT_FAILURE;
  }
  const auto& changed = std::get<Trust::Changed>(outcome);
  return print(changed.directory + (changed.wasSo ? ": is trusted already." : ": trusted."));
}

}  // namespace

std::optional<int> answer(std::span<char* const> arguments, const OS::Environment& environment) {
  if (arguments.empty()) return std::nullopt;
  const std::string_view first = arguments.front();
  if (first == "--version" || first == "-V") return print(version(arguments.subspan(1)));
  if (first == "--help" || first == "-h") return print(help);
  if (first == "--trust" && arguments.size() == 2) return trust(arguments.back(), environment);
  OS::writeLine(STDERR_FILENO, help);
  return wrongUse;
}

}  // namespace quillstead::server::CommandLine
