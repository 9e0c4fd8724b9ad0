#include "server/Store/NewCard.h"

#include "server/Markdown/Markdown.h"
#include "server/Store/Card.h"
#include "server/Store/StoreFiles.h"
#include "support/OS/AtomicFile.h"
#include "support/OS/File.h"
#include "support/Text/Text.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>

namespace quillstead::server::NewCards {

namespace {

constexpr std::size_t longestTitleFromText = 80;  // characters
constexpr int mostAttempts = 100;

std::string_view firstLine(std::string_view text) {
  text = Text::trimmed(text);
  return Text::takeLine(text);
}

/// The text's own heading when it begins with one.
std::optional<std::string_view> ownHeading(std::string_view text) {
  const auto heading = Markdown::heading(firstLine(text));
  return heading && !heading->empty() ? heading : std::nullopt;
}

std::string titleOf(const NewCard& card) {
  if (card.title) {
    std::string title = Text::onOneLine(*card.title);
    if (!title.empty()) return title;
  }
  if (const auto heading = ownHeading(card.text)) return Text::onOneLine(*heading);
  const std::string line = Text::onOneLine(firstLine(card.text));
  const std::string_view shortened = Text::firstCharacters(line, longestTitleFromText);
  return shortened.size() < line.size() ? std::string(shortened) + "…" : line;
}

/// A heading line that reads back as `title`. A title that ends in "#" gets a closing " #", because
/// Markdown drops a closing "#" from a heading.
std::string headingOf(const std::string& title) {
  std::string line = "# " + title;
  if (Markdown::heading(line) != title) line += " #";
  return line;
}

std::string timestamp(std::chrono::system_clock::time_point instant) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(instant);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  std::array<char, sizeof "yyyy-mm-ddThh:mm:ssZ"> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
  return {text.data(), length};
}

void appendField(std::string& text, std::string_view key, const std::optional<std::string>& value) {
  if (value) text.append(key).append(": ").append(FrontMatter::written(*value)).append("\n");
}

void appendTags(std::string& text, const std::vector<std::string>& tags) {
  if (tags.empty()) return;
  text += "tags: [";
  for (const std::string& tag : tags) {
    if (&tag != &tags.front()) text += ", ";
    text += FrontMatter::written(tag);
  }
  text += "]\n";
}

}  // namespace

std::string composed(const NewCard& card, std::chrono::system_clock::time_point created) {
  const std::string title = titleOf(card);
  std::string text = "---\n";
  appendTags(text, card.tags);
  text += "created: " + timestamp(created) + "\n";
  appendField(text, "session", card.session);
  appendField(text, "subagent", card.subagent);
  text += "---\n\n";

  const auto heading = ownHeading(card.text);
  if (!heading || Text::onOneLine(*heading) != title) text += headingOf(title) + "\n\n";
  return text.append(Text::trimmed(card.text)).append("\n");
}

std::variant<AddedCard, NotAdded> add(const Store& store, const NewCard& card) {
  const std::string text = Text::repaired(composed(card, std::chrono::system_clock::now()));
  if (text.size() > StoreFiles::largestFile) return NotAdded{"the card is larger than 1 MiB"};
  if (StoreFiles::holdsConflict(text)) {
    return NotAdded{"a card with git's conflict marks is left out. Indent their lines"};
  }
  const OS::Descriptor cards = StoreFiles::makeCards(store);
  if (!cards.isOpen()) {
    return NotAdded{"the directory " + store.root + "/memory " +
                    (StoreFiles::cardsLeadOut(store) ? "is a symbolic link out of the store"
                                                     : "cannot be made or opened")};
  }
  OS::AtomicFile::removeLeftovers(cards);
  const mode_t mode = store.kind == Store::Kind::personal ? OS::FileMode::privateFile
                                                          : OS::AtomicFile::asTheMaskSays;

  const std::string title = titleOf(card);
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    std::string name = CardName::fromTitle(title, CardName::randomMark());
    switch (OS::AtomicFile::create(cards, name, text, mode)) {
      case OS::AtomicFile::Outcome::created:
        return AddedCard{.title = title, .fileName = std::move(name)};
      case OS::AtomicFile::Outcome::exists:
        break;
      case OS::AtomicFile::Outcome::failed:
        return NotAdded{"the file " + name + " cannot be written: " + std::strerror(errno)};
    }
  }
  return NotAdded{"no name was free for it"};
}

}  // namespace quillstead::server::NewCards
