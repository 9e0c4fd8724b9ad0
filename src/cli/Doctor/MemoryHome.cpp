#include "cli/Doctor/MemoryHome.h"

#include "support/JSONC/Document.h"

#include <array>
#include <variant>
#include <vector>

namespace quillstead::cli::MemoryHome {

namespace {

constexpr std::string_view variable = "QUILLSTEAD_HOME";

/// The value after an equals sign: in quotes, or up to a space.
std::string valueAt(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  if (text.empty()) return {};
  const bool isQuoted = text.front() == '"' || text.front() == '\'';
  if (!isQuoted) return std::string(text.substr(0, text.find_first_of(" \t\n")));
  return std::string(text.substr(1, text.find(text.front(), 1) - 1));
}

/// The value of the variable in "NAME=value" or "NAME = value"; absent when `text` does not set it.
std::optional<std::string> setIn(std::string_view text) {
  for (std::size_t at = text.find(variable); at != std::string_view::npos;
       at = text.find(variable, at + 1)) {
    std::string_view rest = text.substr(at + variable.size());
    while (rest.starts_with(' ')) rest.remove_prefix(1);
    if (rest.starts_with('=')) return valueAt(rest.substr(1));
  }
  return std::nullopt;
}

std::string elsewhere(const ConfiguredHooks& configured, const OS::Environment& environment) {
  for (const std::string& entry : configured.environment) {
    if (const auto value = setIn(entry)) return *value;
  }
  return std::string(environment.value(variable).value_or(""));
}

/// The value in a server's entry in JSON settings.
std::optional<std::string> setInEntry(std::string_view harness, const std::string& content) {
  const auto document = JSONC::Document::read(content);
  const auto* const taken = std::get_if<JSONC::Document>(&document);
  if (taken == nullptr) return std::nullopt;
  const bool isOpenCode = harness == "opencode";
  const std::array<JSONC::Step, 4> path{
      JSONC::Step(std::string(isOpenCode ? "mcp" : "mcpServers")),
      JSONC::Step(std::string("quillstead")),
      JSONC::Step(std::string(isOpenCode ? "environment" : "env")),
      JSONC::Step(std::string(variable))};
  const JSONC::Node* const value = taken->at(path);
  return value != nullptr ? taken->string(*value) : std::nullopt;
}

}  // namespace

std::string ofHooks(const ConfiguredHooks& configured, const OS::Environment& environment) {
  for (const ConfiguredHook& hook : configured.hooks) {
    if (const auto value = setIn(hook.told)) return *value;
  }
  return elsewhere(configured, environment);
}

std::string ofServer(std::string_view harness, const std::optional<std::string>& content,
                     const ConfiguredHooks& configured, const OS::Environment& environment) {
  const std::string text = content.value_or("");
  if (harness == "codex") {
    if (const auto value = setIn(text)) return *value;
    // Codex passes on only the variables that the entry names.
    const bool isHandedOn = text.find(variable) != std::string::npos;
    return isHandedOn ? elsewhere(configured, environment) : std::string();
  }
  const auto value = setInEntry(harness, text);
  return value ? *value : elsewhere(configured, environment);
}

}  // namespace quillstead::cli::MemoryHome
