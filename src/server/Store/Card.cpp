#include "server/Store/Card.h"

#include "server/Store/FrontMatter.h"
#include "server/Store/Lines.h"
#include "server/Store/Markdown.h"
#include "server/Store/StoreFiles.h"
#include "support/Text/Text.h"

#include <algorithm>
#include <optional>

namespace quillstead {

namespace {

std::optional<std::string_view> firstHeading(std::string_view text) {
  Markdown::CodeFence code;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    if (code.covers(line)) continue;
    const auto heading = Markdown::heading(line);
    if (heading && !heading->empty()) return heading;
  }
  return std::nullopt;
}

std::string titleFrom(std::string_view fileName) {
  const bool complete = fileName.ends_with(StoreFiles::cardSuffix);
  const std::string_view stem =
      fileName.substr(0, fileName.size() - (complete ? StoreFiles::cardSuffix.size() : 0));
  std::string title = onOneLine(Text::repaired(std::string(stem)));
  return title.empty() ? std::string(fileName) : title;
}

/// `text`, not blank, without its first line when that is the heading `title`.
std::string_view withoutTitle(std::string_view text, std::string_view title) {
  std::string_view rest = text;
  const auto heading = Markdown::heading(takeLine(rest));
  return heading && *heading == title ? Text::trimmed(rest) : text;
}

std::string withLineFeeds(std::string_view text) {
  std::string result(text);
  std::size_t kept = 0;
  for (std::size_t at = 0; at < result.size(); ++at) {
    if (result[at] == '\r' && at + 1 < result.size() && result[at + 1] == '\n') continue;
    result[kept++] = result[at];
  }
  result.resize(kept);
  return result;
}

}  // namespace

Card Card::parse(std::string_view text, std::string_view fileName) {
  const FrontMatter matter = FrontMatter::parse(text);
  std::string_view body = Text::trimmed(matter.rest);
  Card card;
  card.tags = matter.values("tags");
  if (const auto heading = firstHeading(body)) {
    card.title = onOneLine(*heading);
    body = withoutTitle(body, *heading);
  } else {
    card.title = titleFrom(fileName);
  }
  card.body = withLineFeeds(body);
  return card;
}

std::string onOneLine(std::string_view text) {
  std::string line;
  bool gap = false;
  while (!text.empty()) {
    const Text::Decoded next = Text::decodeFirst(text);
    const std::string_view character = text.substr(0, next.length);
    text.remove_prefix(next.length);
    if (next.character < ' ' || next.character == 0x7F || Text::isBlank(character)) {
      gap = !line.empty();
      continue;
    }
    if (std::exchange(gap, false)) line += ' ';
    line += next.valid ? character : Text::replacementCharacter;
  }
  return line;
}

}  // namespace quillstead
