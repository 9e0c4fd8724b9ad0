#include "server/Store/StoreFiles.h"

#include "server/Complaint.h"
#include "server/Markdown/Markdown.h"
#include "support/OS/Beneath.h"
#include "support/OS/Directory.h"
#include "support/OS/File.h"
#include "support/OS/Paths.h"
#include "support/Text/Text.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace quillstead::server::StoreFiles {

namespace {

constexpr const char* cardsName = "memory";
constexpr const char* rulesName = "rules.md";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

NoText reason(OS::NoContent reason) {
  switch (reason) {
    case OS::NoContent::missing:
      return NoText::missing;
    case OS::NoContent::symbolicLink:
      return NoText::outsideStore;
    case OS::NoContent::notAFile:
      return NoText::notAFile;
    case OS::NoContent::tooLarge:
      return NoText::tooLarge;
    case OS::NoContent::unreadable:
      break;
  }
  return NoText::unreadable;
}

/// Why a file or directory of such a store is skipped; absent when it is not.
std::optional<NoText> flawOf(Store::Kind kind, OS::Ownership ownership) {
  switch (ownership) {
    case OS::Ownership::ours:
      break;
    case OS::Ownership::someoneElses:
      // The user chose the personal store's place, so its owner does not matter.
      if (kind == Store::Kind::project) return NoText::someoneElses;
      break;
    case OS::Ownership::everybodys:
      return NoText::everybodys;
  }
  return std::nullopt;
}

/// The flaw of `name` itself, which may be a symbolic link.
std::optional<NoText> flawOf(Store::Kind kind, const OS::Descriptor& directory, const char* name) {
  struct stat status {};
  if (fstatat(directory.number(), name, &status, AT_SYMLINK_NOFOLLOW) != 0) return NoText::missing;
  return flawOf(kind, OS::ownershipOf(status));
}

std::string cardNamed(Store::Kind kind, const std::string& name) {
  return "the " + std::string(nameOf(kind)) + " card " + name;
}

void reportSkipped(const std::string& path, NoText flaw) {
  complain(path + " is skipped: " + std::string(explained(flaw)));
}

TextOrReason asText(Store::Kind kind, std::variant<OS::FileContent, OS::NoContent> read) {
  if (const auto* none = std::get_if<OS::NoContent>(&read)) return reason(*none);
  auto& content = std::get<OS::FileContent>(read);
  if (const auto flaw = flawOf(kind, content.ownership)) return *flaw;
  if (content.bytes.find('\0') != std::string::npos) return NoText::binary;
  if (content.bytes.starts_with(byteOrderMark)) content.bytes.erase(0, byteOrderMark.size());
  if (holdsConflict(content.bytes)) return NoText::conflict;
  std::string text = Markdown::withoutComments(Text::repaired(std::move(content.bytes)));
  return FileText{.text = std::move(text), .stamp = content.stamp};
}

/// The store's directory: the descriptor held open, or one opened now when it was created later.
class Root {
 public:
  explicit Root(const Store& store) : held_(store.directory) {
    if (!held_) opened_ = OS::openDirectory(store.root, OS::Links::followed);
  }

  [[nodiscard]] const OS::Descriptor& directory() const { return held_ ? *held_ : opened_; }

 private:
  std::shared_ptr<const OS::Descriptor> held_;
  OS::Descriptor opened_;
};

/// Where a link at `path` in the store leads, relative to the store's directory; absent when that
/// is not in the store. Only a link with an absolute path needs this, which nothing below a
/// directory can be opened by.
std::optional<std::string> targetInside(const Store& store, const std::string& path) {
  const std::optional<std::string> root = OS::canonicalPath(store.root);
  const std::optional<std::string> target = OS::canonicalPath(store.root + '/' + path);
  if (!root || !target || !target->starts_with(*root + '/')) return std::nullopt;
  return target->substr(root->size() + 1);
}

/// Reads the file at `path` in the store, links within the store included. `name` is the same in
/// `directory`.
TextOrReason readFollowing(const Store& store, const std::string& path,
                           const OS::Descriptor& directory, const std::string& name) {
  auto read = OS::readFile(directory, name, largestFile);
  const auto* none = std::get_if<OS::NoContent>(&read);
  if (!none || *none != OS::NoContent::symbolicLink) return asText(store.kind, std::move(read));

  if (const auto flaw = flawOf(store.kind, directory, name.c_str())) return *flaw;
  const auto target = targetInside(store, path);
  if (!target) return NoText::outsideStore;
  return asText(store.kind, OS::readFileBeneath(Root(store).directory(), *target, largestFile));
}

}  // namespace

bool holdsConflict(std::string_view text) {
  constexpr std::string_view beginning = "<<<<<<< ";
  constexpr std::string_view end = ">>>>>>> ";
  if (text.find(beginning) == std::string_view::npos) return false;
  bool begun = false;
  while (!text.empty()) {
    const std::string_view line = Text::takeLine(text);
    if (begun && line.starts_with(end)) return true;
    begun = begun || line.starts_with(beginning);
  }
  return false;
}

OS::Descriptor openCards(const Store& store) {
  const Root root(store);
  const std::string path = store.root + '/' + cardsName;
  const auto linkFlaw = flawOf(store.kind, root.directory(), cardsName);
  if (linkFlaw == NoText::missing) return {};

  constexpr int flags = O_RDONLY | O_DIRECTORY;
  OS::Descriptor cards = OS::openBeneath(root.directory(), cardsName, flags);
  if (!cards.isOpen()) {
    const auto target = targetInside(store, cardsName);
    if (target) cards = OS::openBeneath(root.directory(), *target, flags);
  }
  struct stat status {};
  if (!cards.isOpen() || fstat(cards.number(), &status) != 0) return {};
  const auto flaw = linkFlaw ? linkFlaw : flawOf(store.kind, OS::ownershipOf(status));
  if (!flaw) return cards;
  reportSkipped(path, *flaw);
  return {};
}

OS::Descriptor makeCards(const Store& store) {
  constexpr mode_t forAll = 0777;  // less the process's mask
  const bool isPersonal = store.kind == Store::Kind::personal;
  OS::makeDirectories(store.root + '/' + cardsName,
                      isPersonal ? OS::FileMode::privateDirectory : forAll);
  return openCards(store);
}

bool cardsLeadOut(const Store& store) {
  const std::string path = store.root + '/' + cardsName;
  return OS::canonicalPath(path).has_value() && !targetInside(store, cardsName);
}

std::string_view explained(NoText reason) {
  switch (reason) {
    case NoText::outsideStore:
      return "it is a symbolic link out of the store";
    case NoText::someoneElses:
      return "it belongs to another user";
    case NoText::everybodys:
      return "any user can write to it";
    case NoText::notAFile:
      return "it is not a file";
    case NoText::tooLarge:
      return "it is larger than 1 MiB";
    case NoText::binary:
      return "it is not text";
    case NoText::conflict:
      return "it contains an unresolved merge conflict";
    case NoText::missing:
    case NoText::unreadable:
      break;
  }
  return "it cannot be read";
}

void forEachCardName(const OS::Descriptor& cards, const std::function<void(const char*)>& visit) {
  if (!cards.isOpen()) return;
  OS::forEachName(cards, cardSuffix, [&](const char* name) {
    if (*name != '.') visit(name);
  });
}

std::optional<OS::FileStamp> cardStamp(const OS::Descriptor& cards, Store::Kind kind,
                                       const char* name) {
  const auto state = OS::stateOf(cards, name);
  if (!state) return std::nullopt;
  if (const auto flaw = flawOf(kind, state->ownership)) {
    reportSkipped(cardNamed(kind, name), *flaw);
    return std::nullopt;
  }
  return state->stamp;
}

TextOrReason readCard(const OS::Descriptor& cards, Store::Kind kind, const std::string& name) {
  auto read = asText(kind, OS::readFile(cards, name, largestFile));
  const auto* reason = std::get_if<NoText>(&read);
  if (reason && *reason == NoText::conflict) reportSkipped(cardNamed(kind, name), *reason);
  return read;
}

TextOrReason readCardOrLink(const Store& store, const std::string& name) {
  const OS::Descriptor cards = openCards(store);
  if (!cards.isOpen()) return NoText::missing;
  return readFollowing(store, std::string(cardsName) + '/' + name, cards, name);
}

TextOrReason readRules(const Store& store) {
  const Root root(store);
  if (!root.directory().isOpen()) return NoText::missing;
  auto read = readFollowing(store, rulesName, root.directory(), rulesName);
  const auto* const reason = std::get_if<NoText>(&read);
  if (reason && *reason != NoText::missing) reportSkipped(store.root + '/' + rulesName, *reason);
  return read;
}

}  // namespace quillstead::server::StoreFiles

namespace quillstead::server::PrivateFiles {

namespace {

/// True when others can reach what is in the directory `path`.
bool isEnterable(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && (status.st_mode & (S_IXGRP | S_IXOTH)) != 0;
}

void addWhenWide(const std::string& path, std::vector<Wide>& wide) {
  constexpr mode_t permissions = 07777;
  constexpr mode_t ofOthers = S_IRWXG | S_IRWXO;
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || S_ISLNK(status.st_mode)) return;
  if ((status.st_mode & ofOthers) == 0) return;
  const auto mode = static_cast<mode_t>(status.st_mode & permissions);
  wide.push_back({.path = path, .mode = mode});
}

}  // namespace

std::vector<Wide> widerThanPrivate(const Store& personal) {
  std::vector<Wide> wide;
  const std::string memory = personal.root + "/memory";
  addWhenWide(personal.root, wide);
  if (!isEnterable(personal.root)) return wide;
  addWhenWide(memory, wide);
  addWhenWide(personal.root + "/rules.md", wide);
  addWhenWide(personal.root + "/trusted", wide);

  if (!isEnterable(memory)) return wide;
  std::vector<std::string> cards;
  StoreFiles::forEachCardName(StoreFiles::openCards(personal),
                              [&](const char* name) { cards.emplace_back(memory + '/' + name); });
  std::sort(cards.begin(), cards.end());
  for (const std::string& card : cards) addWhenWide(card, wide);
  return wide;
}

}  // namespace quillstead::server::PrivateFiles
