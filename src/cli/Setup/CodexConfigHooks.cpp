#include "cli/Setup/CodexConfigHooks.h"

#include "cli/Setup/HookHandler.h"
#include "cli/Setup/Toml.h"
#include "support/JSON/Writer.h"

#include <string_view>
#include <utility>
#include <variant>

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

}  // namespace

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
  return JSONC::Complaint{.line = place.line,
                          .column = place.column,
                          .what =
                              "this runs our hook, and install does not edit it. Remove it, then: "
                              "quillstead install codex"};
}

}  // namespace quillstead::cli::CodexConfigHooks
