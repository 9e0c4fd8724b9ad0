#include "cli/Init.h"

#include "cli/Context.h"
#include "cli/PersonalStore.h"
#include "cli/ProjectTop.h"
#include "cli/Trust.h"
#include "server/UserPlaces.h"

#include <cstdlib>
#include <string>

namespace quillstead::cli::Init {

namespace {

int make(const std::string& root, PersonalStore::Audience audience, const Context& context) {
  switch (PersonalStore::make(root, audience)) {
    case PersonalStore::Outcome::made:
      context.console.print(
          root +
          ": created. Write your rules into rules.md, and your cards, one per file, into "
          "memory/.\n");
      return EXIT_SUCCESS;
    case PersonalStore::Outcome::wasThere:
      context.console.print(root + ": exists already.\n");
      return EXIT_SUCCESS;
    case PersonalStore::Outcome::failed:
      break;
  }
  context.console.complain(root + ": cannot be created");
  return EXIT_FAILURE;
}

}  // namespace

int run(const Options& options, const Context& context) {
  if (!options.project) {
    return make(context.places.personalStore, PersonalStore::Audience::user, context);
  }
  const auto top = ProjectTop::withGit();
  if (!top) {
    context.console.complain("there is no .git here or above, so no project's top is known");
    return EXIT_FAILURE;
  }
  const std::string root = server::UserPlaces::joined(*top, server::UserPlaces::storeName);
  if (root == context.places.personalStore) {
    context.console.complain(root + ": is your personal store. A project has its own");
    return EXIT_FAILURE;
  }
  const int made = make(root, PersonalStore::Audience::team, context);
  return made == EXIT_SUCCESS ? Trust::run({.directory = *top}, context) : made;
}

}  // namespace quillstead::cli::Init
