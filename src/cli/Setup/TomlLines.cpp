#include "cli/Setup/TomlLines.h"

#include "support/Text/Text.h"

#include <algorithm>
#include <utility>

namespace quillstead::cli {

namespace {

/// True for an array whose elements have `[[headers]]`.
bool isArrayOfTables(const toml::node& node) {
  const auto* const array = node.as_array();
  return array != nullptr && !array->empty() &&
         std::all_of(array->begin(), array->end(), [](const toml::node& element) {
           return element.is_table() && !element.as_table()->is_inline();
         });
}

}  // namespace

TomlLines::TomlLines(std::string text) : text_(std::move(text)) {
  const bool hasMark = text_.starts_with("\xEF\xBB\xBF");
  begins_.push_back(hasMark ? 3 : 0);
  for (std::size_t i = 0; i < text_.size(); ++i) {
    if (text_[i] == '\n') begins_.push_back(i + 1);
  }
}

std::size_t TomlLines::begin(std::size_t line) const {
  return line > begins_.size() ? text_.size() : begins_[line - 1];
}

std::string_view TomlLines::line(std::size_t number) const {
  return std::string_view(text_).substr(begin(number), begin(number + 1) - begin(number));
}

std::size_t TomlLines::place(const toml::source_position& position) const {
  std::size_t place = begin(position.line);
  for (std::size_t column = 1; column < position.column && place < text_.size(); ++column) {
    place += Text::decodeFirst(std::string_view(text_).substr(place)).length;
  }
  return place;
}

std::string TomlLines::lineEnd() const { return line(1).ends_with("\r\n") ? "\r\n" : "\n"; }

bool TomlLines::isHeader(std::size_t number) const {
  const std::string_view text = line(number);
  return text.substr(std::min(text.find_first_not_of(" \t"), text.size())).starts_with('[');
}

void TomlLines::mark(const toml::node& node, std::size_t firstLine,
                     std::vector<bool>& marks) const {
  if (isArrayOfTables(node)) {
    for (const toml::node& element : *node.as_array()) {
      mark(element, element.source().begin.line, marks);
    }
    return;
  }
  const auto* const table = node.as_table();
  if (table == nullptr || table->is_inline()) {
    for (std::size_t i = firstLine; i <= node.source().end.line; ++i) marks[i] = true;
    return;
  }
  const std::size_t header = node.source().begin.line;
  if (isHeader(header)) marks[header] = true;
  for (const auto& [key, value] : *table) mark(value, key.source().begin.line, marks);
}

std::string TomlLines::without(const std::vector<bool>& marks) const {
  std::string text = text_.substr(0, begin(1));
  for (std::size_t i = 1; i <= count(); ++i) {
    const bool isGap = Text::isBlank(line(i)) && marks[i + 1];
    std::size_t next = i + 1;
    while (isGap && next <= count() && marks[next]) ++next;
    const bool isDoubled = isGap && Text::isBlank(line(next));
    if (!marks[i] && !isDoubled) text += line(i);
  }
  return text;
}

}  // namespace quillstead::cli
