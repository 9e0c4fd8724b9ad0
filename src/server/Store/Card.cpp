#include "server/Store/Card.h"

#include "server/Markdown/Markdown.h"
#include "server/Store/StoreFiles.h"
#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "support/OS/Random.h"
#include "support/Text/Character.h"
#include "support/Text/Text.h"

#include <cstdint>
#include <optional>

namespace quillstead::server {

namespace {

constexpr std::string_view border = "---";

/// Removes a quoted value from the start of `text` and returns its content; absent when there is
/// none.
std::optional<std::string> takeQuoted(std::string_view& text) {
  const char quote = text[0];
  std::size_t end = 1;
  while (end < text.size() && text[end] != quote)
    end += quote == '"' && text[end] == '\\' ? 2U : 1U;
  if (end >= text.size()) return std::nullopt;

  const std::string_view quoted = text.substr(0, end + 1);
  std::string value(quoted.substr(1, quoted.size() - 2));
  if (quote == '"') {
    std::string array;
    const auto read = JSON::read(array.append("[").append(quoted).append("]"));
    if (!read) return std::nullopt;
    value = *read->root().array()->front().string();
  }
  text.remove_prefix(end + 1);
  return value;
}

/// The next value of a list; `separators` end it unless it is quoted.
std::string takeValue(std::string_view& text, std::string_view separators) {
  text = Text::trimmed(text);
  if (text.starts_with('"') || text.starts_with('\'')) {
    std::string_view after = text;
    if (std::optional<std::string> value = takeQuoted(after)) {
      const std::size_t end = after.find_first_of(separators);
      text = end == std::string_view::npos ? std::string_view() : after.substr(end + 1);
      return *value;
    }
  }
  const std::size_t end = text.find_first_of(separators);
  std::string value(Text::trimmed(text.substr(0, end)));
  text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  return value;
}

std::vector<std::string> valuesIn(std::string_view text, bool isList) {
  std::vector<std::string> values;
  text = Text::trimmed(text);
  if (text.starts_with('[') && text.ends_with(']')) {
    text = text.substr(1, text.size() - 2);
    isList = true;
  }
  while (!text.empty()) {
    std::string value = takeValue(text, isList ? "," : "");
    if (!value.empty()) values.push_back(std::move(value));
  }
  return values;
}

void readField(std::string_view line, FrontMatter& matter) {
  if (line.starts_with(' ') || line.starts_with("- ") || line.starts_with('\t')) {
    const std::string_view item = Text::trimmed(line);
    if (matter.fields.empty() || !item.starts_with("- ")) return;
    for (std::string& value : valuesIn(item.substr(2), false)) {
      matter.fields.back().second.push_back(std::move(value));
    }
    return;
  }
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos || line.starts_with('#')) return;
  const std::string key(Text::trimmed(line.substr(0, colon)));
  matter.fields.emplace_back(key, valuesIn(line.substr(colon + 1), key == "tags"));
}

std::optional<std::string_view> firstHeading(std::string_view text) {
  Markdown::CodeFence code;
  while (!text.empty()) {
    const std::string_view line = Text::takeLine(text);
    if (code.covers(line)) continue;
    const auto heading = Markdown::heading(line);
    if (heading && !Text::onOneLine(*heading).empty()) return heading;
  }
  return std::nullopt;
}

std::string titleFrom(std::string_view fileName) {
  const bool complete = fileName.ends_with(StoreFiles::cardSuffix);
  const std::string_view stem =
      fileName.substr(0, fileName.size() - (complete ? StoreFiles::cardSuffix.size() : 0));
  std::string title = Text::onOneLine(Text::repaired(std::string(stem)));
  return title.empty() ? std::string(fileName) : title;
}

/// `text`, not blank, without its first line when that is the heading `title`.
std::string_view withoutTitle(std::string_view text, std::string_view title) {
  std::string_view rest = text;
  const auto heading = Markdown::heading(Text::takeLine(rest));
  return heading && *heading == title ? Text::trimmed(rest) : text;
}

}  // namespace

FrontMatter FrontMatter::parse(std::string_view text) {
  FrontMatter none{.fields = {}, .rest = text};
  if (!text.starts_with(border) || Text::trimmed(Text::takeLine(text)) != border) return none;

  FrontMatter matter;
  while (!text.empty()) {
    const std::string_view line = Text::takeLine(text);
    if (Text::trimmed(line) == border) {
      matter.rest = text;
      return matter;
    }
    readField(line, matter);
  }
  return none;  // it never closed: a card that begins with a thematic break
}

std::vector<std::string> FrontMatter::values(std::string_view key) const {
  for (const auto& [name, values] : fields) {
    if (name == key) return values;
  }
  return {};
}

std::string FrontMatter::written(std::string_view value) {
  constexpr std::string_view special = ":#,[]{}\"'\\\n\r\t&*!|>%@`";
  const bool plain = !value.empty() && value.find_first_of(special) == std::string_view::npos &&
                     !value.starts_with('-') && Text::trimmed(value) == value;
  if (plain) return std::string(value);
  std::string array = JSON::write(JSON::Array{JSON::Value(value)}, JSON::Slashes::plain);
  return array.substr(1, array.size() - 2);
}

Card Card::parse(std::string_view text, std::string_view fileName) {
  const FrontMatter matter = FrontMatter::parse(text);
  std::string_view body = Text::trimmed(matter.rest);
  Card card;
  card.tags = matter.values("tags");
  if (const auto heading = firstHeading(body)) {
    card.title = Text::onOneLine(*heading);
    body = withoutTitle(body, *heading);
  } else {
    card.title = titleFrom(fileName);
  }
  card.body = Text::withLineFeeds(body);
  return card;
}

}  // namespace quillstead::server

namespace quillstead::server::CardName {

namespace {

constexpr std::size_t longestStem = 60;   // bytes
constexpr std::size_t longestName = 255;  // bytes, what file systems take
constexpr std::string_view nameless = "card";

std::string stemOf(std::string_view title) {
  std::string stem;
  bool gap = false;
  while (!title.empty()) {
    const Text::Decoded next = Text::decodeFirst(title);
    title.remove_prefix(next.length);
    if (!next.valid || !Text::isWordCharacter(next.character)) {
      gap = !stem.empty();
      continue;
    }
    std::string piece = gap ? "-" : "";
    Text::appendCharacter(piece, static_cast<std::uint32_t>(Text::lowered(next.character)));
    if (stem.size() + piece.size() > longestStem) break;
    stem += piece;
    gap = false;
  }
  return stem.empty() ? std::string(nameless) : stem;
}

bool hasParentStep(std::string_view name) {
  while (!name.empty()) {
    const std::size_t slash = name.find('/');
    if (name.substr(0, slash) == "..") return true;
    name.remove_prefix(slash == std::string_view::npos ? name.size() : slash + 1);
  }
  return false;
}

}  // namespace

std::string fromTitle(std::string_view title, std::string_view mark) {
  return stemOf(title).append("-").append(mark).append(StoreFiles::cardSuffix);
}

std::string randomMark() {
  constexpr std::string_view signs = "0123456789abcdefghjkmnpqrstvwxyz";  // none looks like another
  constexpr std::size_t length = 6;
  std::uint64_t number = OS::randomNumber();
  std::string mark;
  for (std::size_t count = 0; count < length; ++count) {
    mark += signs[number % signs.size()];
    number /= signs.size();
  }
  return mark;
}

Flaw flawOf(std::string_view name) {
  if (name.starts_with('/') || name.starts_with('~')) return Flaw::absolute;
  if (hasParentStep(name)) return Flaw::leavesStore;
  if (name.find('/') != std::string_view::npos) return Flaw::inSubdirectory;
  const bool usable = !name.empty() && name != "." && name.size() <= longestName &&
                      name.find('\0') == std::string_view::npos;
  return usable ? Flaw::none : Flaw::unusable;
}

}  // namespace quillstead::server::CardName
