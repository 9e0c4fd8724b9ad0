#include "cli/Trust.h"

#include "cli/Context.h"
#include "cli/ProjectTop.h"
#include "cli/Wording.h"
#include "server/Store/Trust.h"

#include <cstdlib>
#include <variant>

namespace quillstead::cli::Trust {

namespace {

int list(const Context& context) {
  using Entry = server::Trust::Entry;
  const server::Trust trust = server::Trust::read(context.environment);
  for (const Entry& entry : trust.entries()) {
    const bool isOfEnvironment = entry.source == Entry::Source::environment;
    context.console.print(Wording::harmless(entry.directory) +
                          (isOfEnvironment ? "  (QUILLSTEAD_TRUST)\n" : "\n"));
  }
  return EXIT_SUCCESS;
}

int change(const Options& options, const std::string& directory, const Context& context) {
  const auto outcome = options.revoke ? server::Trust::revoke(context.environment, directory)
                                      : server::Trust::add(context.environment, directory);
  if (const auto* const refused = std::get_if<server::Trust::Refused>(&outcome)) {
    context.console.complain(refused->reason);
    return EXIT_FAILURE;
  }
  const auto& changed = std::get<server::Trust::Changed>(outcome);
  const std::string name = Wording::harmless(changed.directory);
  if (!options.revoke) {
    context.console.print(name + (changed.wasSo ? ": was trusted already\n" : ": trusted\n"));
    return EXIT_SUCCESS;
  }
  const auto cover = server::Trust::read(context.environment).coverOf(changed.directory);
  if (cover) {
    context.console.complain(name + ": stays trusted, since " + Wording::harmless(*cover) + " is");
    return EXIT_FAILURE;
  }
  context.console.print(name + (changed.wasSo ? ": was not trusted\n" : ": no longer trusted\n"));
  return EXIT_SUCCESS;
}

}  // namespace

int run(const Options& options, const Context& context) {
  if (options.list) return list(context);
  if (!options.directory.empty()) return change(options, options.directory, context);
  const auto project = ProjectTop::withStore(context);
  if (project) return change(options, *project, context);
  context.console.complain(
      "there is no project with a .quillstead here or above. Name its directory");
  return EXIT_FAILURE;
}

}  // namespace quillstead::cli::Trust
