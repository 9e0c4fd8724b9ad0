#include "cli/Program.h"

#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/Context.h"
#include "cli/Install.h"
#include "cli/Uninstall.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <variant>

namespace quillstead::cli::Program {

namespace {

/// Runs the command whose options the command line gave.
struct Dispatch {
  const Context& context;

  int operator()(const Doctor::Options& options) const { return Doctor::run(options, context); }
  int operator()(const Init::Options& options) const { return Init::run(options, context); }
  int operator()(const Log::Options& options) const { return Log::run(options, context); }
  int operator()(const Recall::Options& options) const { return Recall::run(options, context); }
  int operator()(const SetupOptions& options) const {
    return options.direction == Direction::install ? Install::run(options, context)
                                                   : Uninstall::run(options, context);
  }
  int operator()(const Texts::Options& options) const { return Texts::run(options, context); }
  int operator()(const Trust::Options& options) const { return Trust::run(options, context); }
};

/// Says why results are lost. A reader that went away has all that it wanted, as in
/// `quillstead log | head`.
void complainOfLostResults(Console& console) {
  if (console.failure() == EPIPE) return;
  console.complain("the results cannot be written to standard output: " +
                   std::string(std::strerror(console.failure())));
}

}  // namespace

int run(std::span<char* const> arguments, const OS::Environment& environment) {
  Console console(STDOUT_FILENO, STDERR_FILENO, environment);
  const CommandLine::Outcome outcome = CommandLine::parse(arguments);
  int status = EXIT_SUCCESS;
  if (const auto* const answer = std::get_if<CommandLine::Answer>(&outcome)) {
    console.print(answer->output);
    console.printError(answer->error);
    status = answer->status;
  } else {
    const Context context{
        .environment = environment, .places = Places::find(environment), .console = console};
    status = std::visit(Dispatch{context}, std::get<CommandLine::Command>(outcome));
  }
  if (console.flush()) return status;
  complainOfLostResults(console);
  return EXIT_FAILURE;
}

}  // namespace quillstead::cli::Program
