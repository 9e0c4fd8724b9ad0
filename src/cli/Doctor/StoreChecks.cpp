#include "cli/Doctor/StoreChecks.h"

#include "cli/Setup/ShellCommand.h"
#include "cli/Wording.h"
#include "hook/Harness/Harnesses.h"
#include "server/Rules/Rules.h"
#include "server/Store/Scope.h"
#include "server/Store/StoreFiles.h"
#include "server/UserPlaces.h"
#include "support/OS/File.h"
#include "support/Text/Text.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string_view>
#include <variant>

namespace quillstead::cli::StoreChecks {

namespace {

using server::Scope;
using server::Store;
namespace StoreFiles = server::StoreFiles;
using StoreFiles::NoText;

/// The cards of a store.
struct Cards {
  std::int64_t count = 0;
  std::int64_t bytes = 0;
  bool areRead = false;  ///< there is a directory for them, and it is not left out
  std::map<std::string, std::string_view> leftOut;  ///< a file's name, and why
};

/// Links that lead out of the store. The server passes over every link, because one within the
/// store has its card already.
void findLinksOut(const Store& store, Cards& cards) {
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir((store.root + "/memory").c_str()),
                                                    closedir);
  if (!listing) return;
  while (const dirent* entry = readdir(listing.get())) {
    const std::string name = entry->d_name;
    if (entry->d_type != DT_LNK || name.starts_with('.')) continue;
    if (!name.ends_with(StoreFiles::cardSuffix)) continue;
    const auto read = StoreFiles::readCardOrLink(store, name);
    const auto* const reason = std::get_if<NoText>(&read);
    if (reason != nullptr) cards.leftOut.emplace(name, StoreFiles::explained(*reason));
  }
}

Cards cardsOf(const Store& store) {
  Cards cards;
  const OS::Descriptor directory = StoreFiles::openCards(store);
  cards.areRead = directory.isOpen();
  StoreFiles::forEachCardName(directory, [&](const char* name) {
    if (!std::string_view(name).ends_with(StoreFiles::cardSuffix)) return;
    const auto read = StoreFiles::readCard(directory, store.kind, name);
    if (const auto* const reason = std::get_if<NoText>(&read)) {
      cards.leftOut.emplace(name, StoreFiles::explained(*reason));
      return;
    }
    ++cards.count;
    cards.bytes += std::get<StoreFiles::FileText>(read).stamp.size;
  });
  if (cards.areRead) findLinksOut(store, cards);
  return cards;
}

bool isEverybodys(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && OS::ownershipOf(status) == OS::Ownership::everybodys;
}

std::string takeFromOthers(const std::string& path) {
  return "chmod -R o-w " + quotedWhereNeeded(path);
}

/// A directory of cards of which none is read.
void findDirectoryLeftOut(const Store& store, Findings& findings) {
  const std::string path = store.root + "/memory";
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return;
  const auto leaveOut = [&](std::string_view why, const std::string& fix) {
    findings.warn(path + " is left out: " + std::string(why), fix);
  };
  if (StoreFiles::cardsLeadOut(store)) {
    leaveOut(StoreFiles::explained(NoText::outsideStore), "put the cards into a directory there");
  } else if (isEverybodys(path)) {
    leaveOut(StoreFiles::explained(NoText::everybodys), takeFromOthers(path));
  } else {
    leaveOut("it is no directory that you can read", "put the cards into a directory there");
  }
}

void findLeftOut(const Store& store, const Cards& cards, const StoreFiles::TextOrReason& rules,
                 Findings& findings) {
  if (!cards.areRead) findDirectoryLeftOut(store, findings);
  constexpr std::size_t most = 3;
  std::size_t told = 0;
  for (const auto& [name, reason] : cards.leftOut) {
    if (++told > most) break;
    findings.warn("the card " + Wording::plain(name) + " is left out: " + std::string(reason),
                  "correct the card, or remove it");
  }
  if (cards.leftOut.size() > most) {
    findings.warn("and so are " + std::to_string(cards.leftOut.size() - most) + " more", "");
  }
  const auto* const reason = std::get_if<NoText>(&rules);
  if (reason && *reason != NoText::missing) {
    findings.warn("rules.md is left out: " + std::string(StoreFiles::explained(*reason)),
                  "correct rules.md");
  }
}

/// Rules that are longer than what a harness takes are cut, or left out whole.
void findTooLongRules(std::size_t size, const std::vector<std::string>& harnesses,
                      Findings& findings) {
  constexpr std::int64_t fence = 30;  // bytes
  for (const std::string& name : harnesses) {
    const auto budget = hook::Harnesses::named(name)->contextBudget();
    if (!budget || static_cast<std::int64_t>(size) + fence <= *budget) continue;
    findings.warn("the rules are " + Wording::grouped(static_cast<std::int64_t>(size)) +
                      " bytes, and " + name + " takes " + Wording::grouped(*budget),
                  "shorten rules.md, or make cards of what is not always needed");
  }
}

/// Says it once, however many files are open.
void findOpenModes(const Store& store, Findings& findings) {
  const auto open = server::PrivateFiles::widerThanPrivate(store);
  if (open.empty()) return;
  const std::string more =
      open.size() == 1 ? " is" : " and " + std::to_string(open.size() - 1) + " more are";
  findings.warn(Wording::plain(open.front().path) + more + " open to other users",
                "chmod -R go= " + quotedWhereNeeded(store.root));
}

/// The bytes of the rules as the user wrote them, without comments; 0 when they are left out.
std::int64_t writtenBytes(const StoreFiles::TextOrReason& rules) {
  const auto* const file = std::get_if<StoreFiles::FileText>(&rules);
  const bool isEmpty = file == nullptr || Text::isBlank(file->text);
  return isEmpty ? 0 : static_cast<std::int64_t>(file->text.size());
}

std::string contentOf(const Store& store, const Cards& cards,
                      const StoreFiles::TextOrReason& rules) {
  return store.root + ": rules of " + Wording::counted(writtenBytes(rules), "byte") + ", " +
         Wording::counted(cards.count, "card") + " of " + Wording::counted(cards.bytes, "byte");
}

/// The check with the content of the store before what was found.
Check withContent(Check check, const std::string& content) {
  check.summary = check.summary.empty() ? content : content + "; " + check.summary;
  return check;
}

/// The bytes of the rules of these stores as a harness gets them, with the lines between.
std::size_t sizeOfRules(const Scope& scope) { return server::Rules::read(scope).size(); }

/// What to do about a project's store that is not used.
std::string fixFor(const server::SkippedStore& store) {
  using Why = server::SkippedStore::Why;
  switch (store.why) {
    case Why::someoneElses:
      return "work in a copy of the project that belongs to you";
    case Why::everybodys:
      return takeFromOthers(store.path);
    case Why::linkOut:
      return "put a directory there instead of the link";
    case Why::unreadable:
      break;
  }
  return "make it a directory that you can read";
}

void findSkipped(const Scope& scope, Findings& findings) {
  for (const server::SkippedStore& store : scope.skipped) {
    findings.warn(store.path + " is left out: " + std::string(server::explained(store.why)),
                  fixFor(store));
  }
}

bool isThere(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

bool isDirectory(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

Check personal(const Context& context, const std::vector<std::string>& harnesses) {
  Scope scope = Scope::find(context.environment, "/");
  scope.project.reset();
  Findings findings;
  const std::string root = server::UserPlaces::personalStore(context.environment);
  if (isEverybodys(root)) {
    findings.warn(root + " is left out: any user can write to it", takeFromOthers(root));
    return findings.check("store.personal", "");
  }
  if (!scope.personal || !isThere(root)) {
    findings.warn((root.empty() ? "no home" : root) + ": there is no personal store",
                  "quillstead init");
    return findings.check("store.personal", "");
  }
  if (!isDirectory(root)) {
    findings.warn(root + " is not a directory, so there is no personal store",
                  "move it away, then: quillstead init");
    return findings.check("store.personal", "");
  }
  const Cards cards = cardsOf(*scope.personal);
  const auto rules = StoreFiles::readRules(*scope.personal);
  findOpenModes(*scope.personal, findings);
  findLeftOut(*scope.personal, cards, rules, findings);
  findTooLongRules(sizeOfRules(scope), harnesses, findings);
  return withContent(findings.check("store.personal", ""),
                     contentOf(*scope.personal, cards, rules));
}

Check project(const Context& context, const std::vector<std::string>& harnesses) {
  const Scope scope = Scope::find(context.environment, std::nullopt);
  Findings findings;
  findSkipped(scope, findings);
  if (scope.projectLeftOut) {
    findings.warn("this project has a store, which is left out: you have not trusted it",
                  "look at what is in it, then: quillstead trust");
  }
  if (!scope.project) {
    return findings.empty()
               ? skipped("store.project", "this directory is in no project with a store")
               : findings.check("store.project", "");
  }
  const Cards cards = cardsOf(*scope.project);
  const auto rules = StoreFiles::readRules(*scope.project);
  findLeftOut(*scope.project, cards, rules, findings);
  findTooLongRules(sizeOfRules(scope), harnesses, findings);
  return withContent(findings.check("store.project", ""), contentOf(*scope.project, cards, rules));
}

}  // namespace quillstead::cli::StoreChecks
