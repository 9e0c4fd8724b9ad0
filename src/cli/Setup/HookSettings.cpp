#include "cli/Setup/HookSettings.h"

#include "cli/Setup/HookEntries.h"
#include "cli/Setup/HookTable.h"
#include "cli/Setup/Members.h"
#include "cli/Setup/SettingsText.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace quillstead::cli::HookSettings {

namespace {

using JSONC::Complaint;
using JSONC::Document;
using JSONC::Kind;
using JSONC::Node;
using JSONC::Step;

const std::vector<std::string> logKeys{"env", "QUILLSTEAD_HOOK_LOG"};
const std::vector<std::string> versionKeys{"version"};

/// Parses the settings, if they have a shape that the harness accepts.
std::variant<Document, Complaint> read(const std::optional<std::string>& before,
                                       const HookTable& table) {
  auto document = SettingsText::read(before);
  if (const auto* taken = std::get_if<Document>(&document)) {
    if (auto complaint = HookEntries::misshapen(*taken, table)) return *std::move(complaint);
  }
  return document;
}

using Install = std::function<Document(Document)>;
using Uninstall = std::function<std::optional<Document>(Document)>;
using Check = std::function<std::optional<Complaint>(const Document&)>;

std::optional<Complaint> anyShape(const Document& /*document*/) { return std::nullopt; }

EditOutcome installed(const std::optional<std::string>& before, const HookTable& table,
                      const Check& check, const Install& install) {
  auto document = read(before, table);
  if (auto* complaint = std::get_if<Complaint>(&document)) return std::move(*complaint);
  auto& taken = std::get<Document>(document);
  if (auto complaint = check(taken)) return *std::move(complaint);
  const bool hadOurs = HookEntries::areThere(taken, table);
  return Edited{.text = SettingsText::of(install(std::move(taken)), before), .hadOurs = hadOurs};
}

EditOutcome uninstalled(const std::string& before, const HookTable& table, const Check& check,
                        const Uninstall& uninstall) {
  auto document = read(before, table);
  if (auto* complaint = std::get_if<Complaint>(&document)) return std::move(*complaint);
  auto& taken = std::get<Document>(document);
  if (auto complaint = check(taken)) return *std::move(complaint);
  const bool hadOurs = HookEntries::areThere(taken, table);
  const auto left = uninstall(std::move(taken));
  return Edited{.text = left ? std::optional(left->text()) : std::nullopt, .hadOurs = hadOurs};
}

std::optional<Complaint> misshapenEnvironment(const Document& document) {
  return Members::notObjects(document, std::span(logKeys).first(1));
}

std::optional<Complaint> misshapenVersion(const Document& document) {
  const Node* version = document.at(Members::pathOf(versionKeys));
  if (version == nullptr || version->kind == Kind::number) return std::nullopt;
  return document.complaint(*version, "\"version\" is not a number");
}

/// True when install wrote the version. A handler from such a run has its timeout first.
bool isVersionOurs(const Document& document) {
  const Node* version = document.at(Members::pathOf(versionKeys));
  const Node* handlers = document.at(std::vector<Step>{Step("hooks"), Step("beforeSubmitPrompt")});
  if (version == nullptr || document.textOf(*version) != "1" || handlers == nullptr) return false;
  return std::any_of(
      handlers->items.begin(), handlers->items.end(), [&](const JSONC::Item& handler) {
        const JSONC::Item* timeout = find(handler.value, "timeout");
        const JSONC::Item* command = find(handler.value, "command");
        return timeout != nullptr && command != nullptr && timeout->begin < command->begin &&
               HookEntries::isOurs(document, handler.value);
      });
}

}  // namespace

EditOutcome installClaudeCode(const std::optional<std::string>& before, const Programs& programs) {
  return installed(before, claudeCodeHooks(), misshapenEnvironment, [&](Document document) {
    document = HookEntries::install(std::move(document), claudeCodeHooks(), programs);
    const bool isNamed = document.at(Members::pathOf(logKeys)) != nullptr;
    if (isNamed || programs.isLogTheUsers || !programs.log) return document;
    return Members::add(document, logKeys, JSON::Value(*programs.log));
  });
}

EditOutcome uninstallClaudeCode(const std::string& before, const Programs& programs) {
  return uninstalled(before, claudeCodeHooks(), misshapenEnvironment,
                     [&](Document document) -> std::optional<Document> {
                       const Node* log = document.at(Members::pathOf(logKeys));
                       if (log != nullptr && document.string(*log) == programs.installedLog) {
                         auto left = Members::remove(document, Members::pathOf(logKeys));
                         if (!left) return std::nullopt;
                         document = *std::move(left);
                       }
                       return HookEntries::uninstall(std::move(document), claudeCodeHooks());
                     });
}

std::optional<std::string> logNamedIn(const std::string& claudeCodeSettings) {
  const auto read = Document::read(claudeCodeSettings);
  const auto* document = std::get_if<Document>(&read);
  const Node* log = document == nullptr ? nullptr : document->at(Members::pathOf(logKeys));
  return log == nullptr ? std::nullopt : document->string(*log);
}

EditOutcome installCodex(const std::optional<std::string>& before, const Programs& programs) {
  return installed(before, codexHooks(), anyShape, [&](Document document) {
    return HookEntries::install(std::move(document), codexHooks(), programs);
  });
}

EditOutcome uninstallCodex(const std::string& before) {
  return uninstalled(before, codexHooks(), anyShape, [](Document document) {
    return HookEntries::uninstall(std::move(document), codexHooks());
  });
}

EditOutcome installCursor(const std::optional<std::string>& before, const Programs& programs) {
  return installed(before, cursorHooks(), misshapenVersion, [&](Document document) {
    if (document.at(Members::pathOf(versionKeys)) != nullptr) {
      return HookEntries::install(std::move(document), cursorHooks(), programs);
    }
    document = Members::add(document, versionKeys, JSON::Value(1));
    return HookEntries::install(std::move(document), cursorHooksWithVersion(), programs);
  });
}

EditOutcome uninstallCursor(const std::string& before) {
  return uninstalled(before, cursorHooks(), misshapenVersion,
                     [](const Document& document) -> std::optional<Document> {
                       const bool goes = isVersionOurs(document);
                       auto left = HookEntries::uninstall(document, cursorHooks());
                       if (!left || !goes) return left;
                       return Members::remove(*left, Members::pathOf(versionKeys));
                     });
}

}  // namespace quillstead::cli::HookSettings
