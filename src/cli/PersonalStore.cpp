#include "cli/PersonalStore.h"

#include "support/OS/AtomicFile.h"
#include "support/OS/Directory.h"
#include "support/OS/FileMode.h"

#include <sys/stat.h>

#include <string_view>

namespace quillstead::cli::PersonalStore {

namespace {

constexpr std::string_view emptyRules =
    "<!--\n"
    "Rules that always hold for you, in your own words, one a list item:\n"
    "\n"
    "- Answer in British English.\n"
    "- Ask before you add a dependency.\n"
    "\n"
    "Your agent gets all that stands outside of comments like this one, at every prompt.\n"
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
