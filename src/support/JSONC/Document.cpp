#include "support/JSONC/Document.h"

#include "support/JSONC/Parser.h"
#include "support/Text/Text.h"

#include <algorithm>

namespace quillstead::JSONC {

namespace {

const Node* step(const Node& node, const Step& step) {
  if (const auto* key = std::get_if<std::string>(&step)) {
    const Item* member = find(node, *key);
    return member == nullptr ? nullptr : &member->value;
  }
  const std::size_t index = std::get<std::size_t>(step);
  if (node.kind != Kind::array || index >= node.items.size()) return nullptr;
  return &node.items[index].value;
}

/// The place of the first byte that is not valid UTF-8.
std::optional<std::size_t> firstInvalid(std::string_view text) {
  for (std::size_t place = 0; place < text.size();) {
    if (static_cast<unsigned char>(text[place]) < 0x80) {
      ++place;
      continue;
    }
    const Text::Decoded next = Text::decodeFirst(text.substr(place));
    if (!next.valid) return place;
    place += next.length;
  }
  return std::nullopt;
}

}  // namespace

std::variant<Document, Complaint> Document::read(std::string text) {
  if (const auto place = firstInvalid(text)) return complaintAt(text, *place, "this is not UTF-8");
  auto parsed = parse(text);
  if (auto* failure = std::get_if<Failure>(&parsed)) {
    return complaintAt(text, failure->place, std::move(failure->what));
  }
  return Document(std::move(text), std::move(std::get<std::optional<Node>>(parsed)));
}

const Node* Document::at(std::span<const Step> path) const {
  const Node* node = root_ ? &*root_ : nullptr;
  for (const Step& next : path) {
    if (node == nullptr) return nullptr;
    node = step(*node, next);
  }
  return node;
}

std::string_view Document::textOf(const Node& node) const {
  return std::string_view(text_).substr(node.begin, node.end - node.begin);
}

std::optional<std::string> Document::string(const Node& node) const {
  if (node.kind != Kind::string) return std::nullopt;
  return unescaped(textOf(node));
}

Complaint Document::complaint(const Node& node, std::string what) const {
  return complaintAt(text_, node.begin, std::move(what));
}

const Item* find(const Node& object, std::string_view key) {
  if (object.kind != Kind::object) return nullptr;
  const auto found = std::find_if(object.items.rbegin(), object.items.rend(),
                                  [key](const Item& member) { return member.key == key; });
  return found == object.items.rend() ? nullptr : &*found;
}

Complaint complaintAt(std::string_view text, std::size_t place, std::string what) {
  Complaint complaint{.line = 1, .column = 1, .what = std::move(what)};
  for (std::size_t i = text.starts_with("\xEF\xBB\xBF") ? 3 : 0; i < place;) {
    const bool isReturn = text[i] == '\r' && !text.substr(i + 1).starts_with('\n');
    if (text[i] == '\n' || isReturn) {
      ++complaint.line;
      complaint.column = 1;
      ++i;
    } else {
      ++complaint.column;
      i += Text::decodeFirst(text.substr(i)).length;
    }
  }
  return complaint;
}

}  // namespace quillstead::JSONC
