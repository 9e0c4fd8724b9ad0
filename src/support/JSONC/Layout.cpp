#include "support/JSONC/Layout.h"

#include "support/JSON/Writer.h"
#include "support/JSONC/Parser.h"

#include <algorithm>
#include <functional>

namespace quillstead::JSONC {

namespace {

std::size_t lineBegin(std::string_view text, std::size_t place) {
  const std::size_t end = text.substr(0, place).find_last_of("\r\n");
  if (end != std::string_view::npos) return end + 1;
  return text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
}

std::string lineEndOf(std::string_view text) {
  const std::size_t first = text.find_first_of("\r\n");
  if (first == std::string_view::npos || text[first] == '\n') return "\n";
  return text.substr(first).starts_with("\r\n") ? "\r\n" : "\r";
}

/// The extra indentation of the first item that begins a line, beyond that of its container.
std::optional<std::string> indentIn(std::string_view text, const Node& node) {
  for (const Item& item : node.items) {
    if (beginsLine(text, item.begin)) {
      const std::string outer = marginAt(text, node.begin);
      const std::string inner = marginAt(text, item.begin);
      if (inner.size() > outer.size() && inner.starts_with(outer)) {
        return inner.substr(outer.size());
      }
    }
    if (auto found = indentIn(text, item.value)) return found;
  }
  return std::nullopt;
}

std::string blankAt(std::string_view text, std::size_t place) {
  return place < text.size() && isBlank(text[place]) ? " " : "";
}

/// The white space after the first comma that is followed by an item on the same line.
std::optional<std::string> afterCommaIn(std::string_view text, const Node& node) {
  for (std::size_t i = 0; i < node.items.size(); ++i) {
    const Item& item = node.items[i];
    if (i + 1 < node.items.size() && !beginsLine(text, node.items[i + 1].begin)) {
      return blankAt(text, *item.comma + 1);
    }
    if (auto found = afterCommaIn(text, item.value)) return found;
  }
  return std::nullopt;
}

std::optional<std::string> afterColonIn(std::string_view text, const Node& node) {
  for (const Item& item : node.items) {
    if (node.kind == Kind::object) return blankAt(text, item.colon + 1);
    if (auto found = afterColonIn(text, item.value)) return found;
  }
  return std::nullopt;
}

bool isContainer(const JSON::Value& value) { return value.object() || value.array(); }

}  // namespace

Layout Layout::of(const Document& document) {
  const std::string_view text = document.text();
  Layout layout{.lineEnd = lineEndOf(text), .indent = "  ", .afterColon = " ", .afterComma = " "};
  if (!document.root()) return layout;
  const Node& root = *document.root();
  layout.indent = indentIn(text, root).value_or(layout.indent);
  layout.afterColon = afterColonIn(text, root).value_or(layout.afterColon);
  layout.afterComma = afterCommaIn(text, root).value_or(layout.afterColon);
  return layout;
}

std::string Layout::render(const JSON::Value& value,
                           const std::optional<std::string>& margin) const {
  const JSON::Array* array = value.array();
  if (array == nullptr && value.object() == nullptr) {
    return JSON::write(value, JSON::Slashes::plain);
  }
  std::vector<std::string> items;
  const bool isShort = array != nullptr && std::none_of(array->begin(), array->end(), isContainer);
  const auto inner = margin && !isShort ? std::optional(*margin + indent) : std::nullopt;
  if (array != nullptr) {
    for (const JSON::Value& element : *array) items.push_back(render(element, inner));
  } else {
    for (const JSON::Member& member : value.object()->members()) {
      items.push_back(render(member.key, member.value, inner));
    }
  }
  std::string text = array != nullptr ? "[" : "{";
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) text += inner ? "," : "," + afterComma;
    if (inner) text += lineEnd + *inner;
    text += items[i];
  }
  if (inner && !items.empty()) text += lineEnd + *margin;
  return text + (array != nullptr ? "]" : "}");
}

std::string Layout::render(std::string_view key, const JSON::Value& value,
                           const std::optional<std::string>& margin) const {
  return JSON::write(JSON::Value(key), JSON::Slashes::plain) + ":" + afterColon +
         render(value, margin);
}

std::string marginAt(std::string_view text, std::size_t place) {
  const std::size_t begin = lineBegin(text, place);
  std::size_t end = begin;
  while (end < place && isBlank(text[end])) ++end;
  return std::string(text.substr(begin, end - begin));
}

bool beginsLine(std::string_view text, std::size_t place) {
  while (place > 0 && isBlank(text[place - 1])) --place;
  return place > 0 && isLineEnd(text[place - 1]);
}

}  // namespace quillstead::JSONC
