#include "cli/Setup/Members.h"

#include "support/JSONC/Edit.h"

#include <utility>

namespace quillstead::cli::Members {

namespace {

JSON::Value nested(std::span<const std::string> keys, JSON::Value value) {
  for (std::size_t i = keys.size(); i-- > 0;) {
    JSON::Object object;
    object.set(keys[i], std::move(value));
    value = JSON::Value(std::move(object));
  }
  return value;
}

}  // namespace

JSONC::Path pathOf(std::span<const std::string> keys) { return {keys.begin(), keys.end()}; }

JSONC::Document add(const JSONC::Document& document, std::span<const std::string> keys,
                    JSON::Value value) {
  if (!document.root()) return JSONC::Edit::addRoot(document, nested(keys, std::move(value)));
  std::size_t depth = 0;
  while (document.at(pathOf(keys.first(depth + 1))) != nullptr) ++depth;
  return JSONC::Edit::addMember(document, pathOf(keys.first(depth)), keys[depth],
                                nested(keys.subspan(depth + 1), std::move(value)));
}

std::optional<JSONC::Document> remove(const JSONC::Document& document, JSONC::Path path) {
  auto removed = JSONC::Edit::remove(document, path);
  path.pop_back();
  if (removed.left != JSONC::Edit::Left::emptyMade) return std::move(removed.document);
  if (path.empty()) return JSONC::Edit::removeRoot(removed.document);
  return remove(removed.document, std::move(path));
}

std::optional<JSONC::Complaint> notObjects(const JSONC::Document& document,
                                           std::span<const std::string> keys) {
  for (std::size_t depth = 0; depth <= keys.size(); ++depth) {
    const JSONC::Node* node = document.at(pathOf(keys.first(depth)));
    if (node == nullptr) return std::nullopt;
    if (node->kind == JSONC::Kind::object) continue;
    const std::string name = depth == 0 ? "the top" : "\"" + keys[depth - 1] + "\"";
    return document.complaint(*node, name + " is not an object");
  }
  return std::nullopt;
}

}  // namespace quillstead::cli::Members
