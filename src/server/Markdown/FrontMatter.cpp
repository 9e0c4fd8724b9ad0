#include "server/Markdown/FrontMatter.h"

#include "support/JSON/Reader.h"
#include "support/JSON/Writer.h"
#include "support/Text/Text.h"

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

}  // namespace quillstead::server
