#include "cli/Init.h"

#include "cli/Context.h"
#include "cli/ProjectTop.h"
#include "cli/Trust.h"
#include "server/UserPlaces.h"
#include "support/OS/AtomicFile.h"
#include "support/OS/Directory.h"
#include "support/OS/File.h"

#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <string_view>

namespace quillstead::cli::PersonalStore {

namespace {

constexpr std::string_view emptyRules =
    "<!--\n"
    "Rules that always hold, in your own words, one a list item:\n"
    "\n"
    "- Answer in British English.\n"
    "- Ask before you add a dependency.\n"
    "\n"
    "Your agent gets all that stands outside of comments like this one, once in each session.\n"
    "-->\n";

bool isThere(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

}  // namespace

Outcome make(const std::string& root, Audience audience) {
  const bool isForTheUser = audience == Audience::user;
  const mode_t mode = isForTheUser ? OS::FileMode::privateDirectory : 0755;
  const std::string cards = root + "/memory";
  bool isChanged = !isThere(cards);
  if (isChanged && !OS::makeDirectories(cards, mode)) return Outcome::failed;

  const OS::Descriptor directory = OS::openDirectory(root, OS::Links::followed);
  if (!directory.isOpen()) return Outcome::failed;
  if (!isThere(root + "/rules.md")) {
    const mode_t rulesMode = isForTheUser ? OS::FileMode::privateFile : OS::AtomicFile::forAll;
    const auto created = OS::AtomicFile::create(directory, "rules.md", emptyRules, rulesMode);
    if (created == OS::AtomicFile::Outcome::failed) return Outcome::failed;
    isChanged = isChanged || created == OS::AtomicFile::Outcome::created;
  }
  return isChanged ? Outcome::made : Outcome::wasThere;
}

}  // namespace quillstead::cli::PersonalStore

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
