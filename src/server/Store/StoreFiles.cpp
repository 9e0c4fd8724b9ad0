#include "server/Store/StoreFiles.h"

#include "support/OS/CanonicalPath.h"
#include "support/OS/Directory.h"
#include "support/Text/Text.h"

#include <optional>

namespace quillstead::StoreFiles {

namespace {

constexpr std::string_view cardsName = "/memory";
constexpr const char* rulesName = "rules.md";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Where `path` leads, when that is in the store.
std::optional<std::string> resolvedInside(const Store& store, const std::string& path) {
  const std::optional<std::string> root = OS::canonicalPath(store.root);
  std::optional<std::string> target = OS::canonicalPath(path);
  if (!root || !target || !target->starts_with(*root + '/')) return std::nullopt;
  return target;
}

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

TextOrReason asText(std::variant<OS::FileContent, OS::NoContent> read) {
  if (const auto* none = std::get_if<OS::NoContent>(&read)) return reason(*none);
  auto& content = std::get<OS::FileContent>(read);
  if (content.bytes.find('\0') != std::string::npos) return NoText::binary;
  if (content.bytes.starts_with(byteOrderMark)) content.bytes.erase(0, byteOrderMark.size());
  return FileText{.text = Text::repaired(std::move(content.bytes)), .stamp = content.stamp};
}

/// Reads `name` in an open directory whose path is `directoryPath`, links within the store
/// included.
TextOrReason readFollowing(const Store& store, const OS::Descriptor& directory,
                           const std::string& directoryPath, const std::string& name) {
  auto read = OS::readFile(directory, name, largestFile);
  const auto* none = std::get_if<OS::NoContent>(&read);
  if (!none || *none != OS::NoContent::symbolicLink) return asText(std::move(read));

  const auto target = resolvedInside(store, directoryPath + '/' + name);
  if (!target) return NoText::outsideStore;
  return asText(OS::readFile(directory, *target, largestFile));
}

std::string cardsPath(const Store& store) { return store.root + std::string(cardsName); }

}  // namespace

OS::Descriptor openCards(const Store& store) {
  OS::Descriptor plain = OS::openDirectory(cardsPath(store), OS::Links::refused);
  if (plain.isOpen()) return plain;
  const auto target = resolvedInside(store, cardsPath(store));
  return target ? OS::openDirectory(*target, OS::Links::refused) : OS::Descriptor();
}

OS::Descriptor makeCards(const Store& store) {
  constexpr mode_t onlyForTheUser = 0700;
  constexpr mode_t forAll = 0755;
  const bool isPersonal = store.kind == Store::Kind::personal;
  OS::makeDirectories(cardsPath(store), isPersonal ? onlyForTheUser : forAll);
  return openCards(store);
}

bool cardsLeadOut(const Store& store) {
  const std::string path = cardsPath(store);
  return OS::canonicalPath(path).has_value() && !resolvedInside(store, path);
}

void forEachCard(const OS::Descriptor& cards,
                 const std::function<void(std::string_view name, OS::FileStamp stamp)>& visit) {
  if (!cards.isOpen()) return;
  OS::forEachFile(cards, cardSuffix, [&](std::string_view name, OS::FileStamp stamp) {
    if (!name.starts_with('.')) visit(name, stamp);
  });
}

TextOrReason readCard(const OS::Descriptor& cards, const std::string& name) {
  return asText(OS::readFile(cards, name, largestFile));
}

TextOrReason readCardOrLink(const Store& store, const std::string& name) {
  const OS::Descriptor cards = openCards(store);
  if (!cards.isOpen()) return NoText::missing;
  return readFollowing(store, cards, cardsPath(store), name);
}

TextOrReason readRules(const Store& store) {
  const OS::Descriptor root = OS::openDirectory(store.root, OS::Links::followed);
  if (!root.isOpen()) return NoText::missing;
  return readFollowing(store, root, store.root, rulesName);
}

}  // namespace quillstead::StoreFiles
