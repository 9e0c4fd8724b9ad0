#include "cli/Setup/CodexConfigHooks.h"

#include "cli/Setup/HookHandler.h"
#include "cli/Setup/TomlLines.h"
#include "support/JSON/Writer.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quillstead::cli::CodexConfigHooks {

namespace {

constexpr std::string_view key = "hooks";

/// The types that occur in hooks: tables, arrays, strings, numbers and booleans.
JSON::Value valueOf(const toml::node& node) {
  if (const auto* const table = node.as_table()) {
    JSON::Object object;
    for (const auto& [name, value] : *table) object.set(name.str(), valueOf(value));
    return object;
  }
  if (const auto* const list = node.as_array()) {
    JSON::Array array;
    for (const toml::node& value : *list) array.push_back(valueOf(value));
    return array;
  }
  if (const auto* const text = node.as_string()) return {text->get()};
  if (const auto* const number = node.as_integer()) return {number->get()};
  if (const auto* const truth = node.as_boolean()) return {truth->get()};
  return nullptr;
}

bool runsOurs(const toml::node& handler) {
  const auto read = JSONC::Document::read(JSON::write(valueOf(handler), JSON::Slashes::plain));
  const auto* const document = std::get_if<JSONC::Document>(&read);
  return document != nullptr && HookHandler::read(*document, *document->root()).has_value();
}

/// The first of the handlers in these groups that runs ours; null when none does.
const toml::node* oursIn(const toml::node& groups) {
  if (!groups.is_array()) return nullptr;
  for (const toml::node& group : *groups.as_array()) {
    const auto* const table = group.as_table();
    const auto* const handlers = table == nullptr ? nullptr : table->get_as<toml::array>(key);
    if (handlers == nullptr) continue;
    for (const toml::node& handler : *handlers) {
      if (handler.is_table() && runsOurs(handler)) return &handler;
    }
  }
  return nullptr;
}

/// Erases our handlers from one event's groups, and each group that has no other handler and no key
/// of the user's. `erased` is called with each node before.
void eraseOurs(toml::array& groups, const std::function<void(const toml::node&)>& erased) {
  for (std::size_t i = groups.size(); i-- > 0;) {
    auto* const group = groups[i].as_table();
    auto* const handlers = group == nullptr ? nullptr : group->get_as<toml::array>(key);
    if (handlers == nullptr) continue;
    const auto isOurs = [](const toml::node& handler) {
      return handler.is_table() && runsOurs(handler);
    };
    const bool areAllOurs =
        !handlers->empty() && std::all_of(handlers->begin(), handlers->end(), isOurs);
    const std::size_t usual = group->contains("matcher") ? 2 : 1;
    if (areAllOurs && group->size() == usual) {
      erased(*group);
      groups.erase(groups.cbegin() + static_cast<std::ptrdiff_t>(i));
      continue;
    }
    for (std::size_t j = handlers->size(); j-- > 0;) {
      if (!isOurs((*handlers)[j])) continue;
      erased((*handlers)[j]);
      handlers->erase(handlers->cbegin() + static_cast<std::ptrdiff_t>(j));
    }
    if (areAllOurs) group->erase(key);
  }
}

/// Erases events without groups, and the table of hooks when it has no event.
void eraseEmpty(toml::table& root) {
  auto* const hooks = root.get_as<toml::table>(key);
  if (hooks == nullptr) return;
  for (auto event = hooks->begin(); event != hooks->end();) {
    const auto* const groups = event->second.as_array();
    event = groups != nullptr && groups->empty() ? hooks->erase(event) : std::next(event);
  }
  if (hooks->empty()) root.erase(key);
}

}  // namespace

EditOutcome uninstall(const std::string& before) {
  const Edited unchanged{.text = before, .hadOurs = false};
  toml::parse_result parsed = toml::parse(std::string_view(before));
  auto* const hooks = parsed ? parsed.table().get_as<toml::table>(key) : nullptr;
  if (hooks == nullptr) return unchanged;
  const TomlLines lines(before);
  std::vector<bool> marks(lines.count() + 2);
  for (auto& [event, groups] : *hooks) {
    if (!groups.is_array()) continue;
    eraseOurs(*groups.as_array(),
              [&](const toml::node& node) { lines.mark(node, node.source().begin.line, marks); });
  }
  eraseEmpty(parsed.table());
  std::string text = lines.without(marks);
  toml::parse_result after = toml::parse(std::string_view(text));
  if (!after) return unchanged;
  eraseEmpty(after.table());
  if (after.table() != parsed.table()) return unchanged;
  const bool hadOurs = text != before;
  return Edited{.text = std::move(text), .hadOurs = hadOurs};
}

std::optional<std::string> asJSON(const std::string& content) {
  const toml::parse_result parsed = toml::parse(std::string_view(content));
  const toml::table* const hooks = parsed ? parsed.table().get_as<toml::table>(key) : nullptr;
  if (hooks == nullptr) return std::nullopt;
  JSON::Object top;
  top.set(key, valueOf(*hooks));
  return JSON::write(std::move(top), JSON::Slashes::plain);
}

std::optional<JSONC::Complaint> ours(const std::string& content) {
  const toml::parse_result parsed = toml::parse(std::string_view(content));
  const toml::table* const hooks = parsed ? parsed.table().get_as<toml::table>(key) : nullptr;
  const toml::node* first = nullptr;
  if (hooks == nullptr) return std::nullopt;
  for (const auto& [event, groups] : *hooks) {
    const toml::node* const found = oursIn(groups);
    const bool isFirst = first == nullptr || (found != nullptr && found->source().begin.line <
                                                                      first->source().begin.line);
    if (isFirst) first = found;
  }
  if (first == nullptr) return std::nullopt;
  const toml::source_position place = first->source().begin;
  return JSONC::Complaint{
      .line = place.line, .column = place.column, .what = "this runs our hook; remove it by hand"};
}

}  // namespace quillstead::cli::CodexConfigHooks
