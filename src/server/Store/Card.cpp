#include "server/Store/Card.h"

#include "server/Markdown/FrontMatter.h"
#include "server/Markdown/Markdown.h"
#include "server/Store/StoreFiles.h"
#include "support/Text/Text.h"

#include <optional>

namespace quillstead::server {

namespace {

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
