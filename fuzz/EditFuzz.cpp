// Any bytes as a settings file: adding to it keeps every byte that was there, in its order, gives a
// document with the addition and everything else as it was, and taking the addition away again
// gives back the file, byte for byte.
#include "Property.h"
#include "support/JSONC/Edit.h"

#include <algorithm>
#include <vector>

using namespace quillstead;

namespace {

constexpr std::string_view addedKey = "qs-added";

/// The paths to all containers that have room for more within them.
void collect(const JSONC::Node& node, JSONC::Path& path, std::vector<JSONC::Path>& paths) {
  constexpr std::size_t depthOfAddition = 4;
  if (node.kind != JSONC::Kind::object && node.kind != JSONC::Kind::array) return;
  if (path.size() + depthOfAddition > JSONC::maximumDepth) return;
  paths.push_back(path);
  for (std::size_t i = 0; i < node.items.size(); ++i) {
    const JSONC::Item& item = node.items[i];
    const bool isObject = node.kind == JSONC::Kind::object;
    if (isObject && JSONC::find(node, item.key) != &item) continue;  // another one counts
    path.push_back(isObject ? JSONC::Step(item.key) : JSONC::Step(i));
    collect(item.value, path, paths);
    path.pop_back();
  }
}

/// The document without comments, commas too many, and white space.
std::string essence(const JSONC::Document& document, const JSONC::Node& node) {
  std::string text;
  if (node.kind != JSONC::Kind::object && node.kind != JSONC::Kind::array) {
    return std::string(document.textOf(node));
  }
  for (const JSONC::Item& item : node.items) {
    if (item.key == addedKey) continue;
    text += "," + item.key + ":" + essence(document, item.value);
  }
  return text;
}

bool holdsInOrder(std::string_view text, std::string_view bytes) {
  for (const char byte : text) {
    if (!bytes.empty() && byte == bytes.front()) bytes.remove_prefix(1);
  }
  return bytes.empty();
}

JSON::Value addition(unsigned char kind) {
  JSON::Object inner;
  inner.set("list", JSON::Value(JSON::Array{JSON::Value("x"), JSON::Value(1)}));
  if ((kind & 1U) != 0) inner.set("groups", JSON::Value(JSON::Array{JSON::Value(inner)}));
  return (kind & 2U) != 0 ? JSON::Value(std::move(inner)) : JSON::Value("text");
}

JSONC::Document add(const JSONC::Document& document, const JSONC::Path& path,
                    const JSON::Value& value) {
  if (document.at(path)->kind == JSONC::Kind::object) {
    return JSONC::Edit::addMember(document, path, addedKey, value);
  }
  return JSONC::Edit::addElement(document, path, value);
}

JSONC::Path pathOfAddition(const JSONC::Document& document, JSONC::Path path) {
  const JSONC::Node& container = *document.at(path);
  if (container.kind == JSONC::Kind::object) {
    path.emplace_back(std::string(addedKey));
  } else {
    path.emplace_back(container.items.size() - 1);
  }
  return path;
}

void requireReversible(const JSONC::Document& document, const JSONC::Path& path,
                       const JSON::Value& value) {
  const bool wasEmpty = document.at(path)->items.empty();
  const JSONC::Document added = add(document, path, value);
  Fuzz::require(holdsInOrder(added.text(), document.text()), "every byte stays");
  if (document.at(path)->kind == JSONC::Kind::object) {
    Fuzz::require(essence(added, *added.root()) == essence(document, *document.root()),
                  "every other value stays");
  }
  const auto removed = JSONC::Edit::remove(added, pathOfAddition(added, path));
  Fuzz::require(removed.document.text() == document.text(), "taking away gives back the file");
  Fuzz::require(removed.left != JSONC::Edit::Left::emptyMade, "what was there is known to be");
  Fuzz::require(wasEmpty || removed.left == JSONC::Edit::Left::others, "others are seen");

  // Two, one after the other, and away in either order.
  const JSONC::Path first = pathOfAddition(added, path);
  const std::string second = "qs-second";
  const bool isObject = added.at(path)->kind == JSONC::Kind::object;
  const JSONC::Document both = isObject ? JSONC::Edit::addMember(added, path, second, value)
                                        : JSONC::Edit::addElement(added, path, value);
  JSONC::Path last = path;
  last.push_back(isObject ? JSONC::Step(second) : JSONC::Step(both.at(path)->items.size() - 1));
  Fuzz::require(JSONC::Edit::remove(both, last).document.text() == added.text(), "one of two goes");
  JSONC::Path left = path;
  left.push_back(isObject ? JSONC::Step(second) : first.back());
  const auto withoutFirst = JSONC::Edit::remove(both, first).document;
  Fuzz::require(JSONC::Edit::remove(withoutFirst, left).document.text() == document.text(),
                "in either order");
}

}  // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size < 2) return 0;
  const JSON::Value value = addition(data[1]);
  auto read = JSONC::Document::read(std::string(Fuzz::bytes(data + 2, size - 2)));
  const auto* document = std::get_if<JSONC::Document>(&read);
  if (document == nullptr) return 0;

  JSON::Object outer;
  outer.set(addedKey, value);
  if (!document->root()) {
    const auto added = JSONC::Edit::addRoot(*document, JSON::Value(outer));
    const auto emptied =
        JSONC::Edit::remove(added, std::vector<JSONC::Step>{std::string(addedKey)});
    Fuzz::require(emptied.left == JSONC::Edit::Left::emptyMade, "what was made is known to be");
    const auto removed = JSONC::Edit::removeRoot(emptied.document);
    Fuzz::require(removed.has_value() != document->text().empty() || !document->text().empty(),
                  "nothing is left of nothing");
    Fuzz::require(!removed || removed->text() == document->text(), "the root goes");
    return 0;
  }
  std::vector<JSONC::Path> paths;
  JSONC::Path path;
  collect(*document->root(), path, paths);
  if (paths.empty()) return 0;
  const JSONC::Path& chosen = paths[data[0] % paths.size()];
  const JSONC::Node& container = *document->at(chosen);
  if (JSONC::find(container, addedKey) != nullptr) return 0;
  requireReversible(*document, chosen, value);

  // A container that is made with what is in it goes with it.
  const JSONC::Document nested = add(*document, chosen, JSON::Value(outer));
  JSONC::Path inner = pathOfAddition(nested, chosen);
  const JSONC::Path made = inner;
  inner.emplace_back(std::string(addedKey));
  const auto emptied = JSONC::Edit::remove(nested, inner);
  Fuzz::require(emptied.left == JSONC::Edit::Left::emptyMade, "what was made is known to be");
  Fuzz::require(JSONC::Edit::remove(emptied.document, made).document.text() == document->text(),
                "what was made goes");
  return 0;
}
