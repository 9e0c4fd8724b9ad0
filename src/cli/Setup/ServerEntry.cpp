#include "cli/Setup/ServerEntry.h"

#include "cli/Setup/Members.h"
#include "cli/Setup/SettingsText.h"
#include "support/JSONC/Edit.h"

#include <string_view>
#include <utility>

namespace quillstead::cli::ServerEntry {

namespace {

using JSONC::Document;
using JSONC::Node;
using JSONC::Path;
using JSONC::Step;

JSON::Value entry(Form form, const std::string& server) {
  JSON::Object object;
  if (form == Form::asArray) {
    object.set("type", JSON::Value("local"));
    object.set("command", JSON::Value(JSON::Array{JSON::Value(server)}));
    object.set("enabled", JSON::Value(true));
  } else {
    if (form == Form::withType) object.set("type", JSON::Value("stdio"));
    object.set("command", JSON::Value(server));
    object.set("args", JSON::Value(JSON::Array()));
  }
  return object;
}

/// The position of the program's path in the entry.
Path pathOfProgram(const Where& where) {
  Path path = Members::pathOf(where.keys);
  path.emplace_back("command");
  if (where.form == Form::asArray) path.emplace_back(std::size_t{0});
  return path;
}

/// True when the entry runs our server directly, from any path.
bool isOurs(const Document& document, const Where& where) {
  const Node* program = document.at(pathOfProgram(where));
  const auto path = program == nullptr ? std::nullopt : document.string(*program);
  return path && std::string_view(*path).substr(path->rfind('/') + 1) == "quillstead-mcp";
}

Document updated(Document document, const Where& where, const std::string& server) {
  const Path program = pathOfProgram(where);
  if (document.string(*document.at(program)) != server) {
    document = JSONC::Edit::replace(document, program, JSON::Value(server));
  }
  if (where.form == Form::asArray) {
    Path command = program;
    command.pop_back();
    if (document.at(command)->items.size() == 1) return document;
    return JSONC::Edit::replace(document, command, JSON::Value(JSON::Array{JSON::Value(server)}));
  }
  Path arguments = program;
  arguments.back() = Step("args");
  const Node* node = document.at(arguments);
  if (node == nullptr || (node->kind == JSONC::Kind::array && node->items.empty())) return document;
  return JSONC::Edit::replace(document, arguments, JSON::Value(JSON::Array()));
}

}  // namespace

EditOutcome install(const std::optional<std::string>& before, const Where& where,
                    const std::string& server) {
  auto read = SettingsText::read(before);
  if (auto* complaint = std::get_if<JSONC::Complaint>(&read)) return std::move(*complaint);
  const auto& document = std::get<Document>(read);
  if (auto complaint = Members::notObjects(document, where.keys)) return *std::move(complaint);
  if (document.at(Members::pathOf(where.keys)) == nullptr) {
    const Document added = Members::add(document, where.keys, entry(where.form, server));
    return Edited{.text = SettingsText::of(added, before), .hadOurs = false};
  }
  if (!isOurs(document, where)) return Edited{.text = before, .hadOurs = false};
  return Edited{.text = updated(document, where, server).text(), .hadOurs = true};
}

EditOutcome uninstall(const std::string& before, const Where& where) {
  auto read = SettingsText::read(before);
  if (auto* complaint = std::get_if<JSONC::Complaint>(&read)) return std::move(*complaint);
  auto& document = std::get<Document>(read);
  if (auto complaint = Members::notObjects(document, where.keys)) return *std::move(complaint);
  const bool hadOurs = isOurs(document, where);
  while (isOurs(document, where)) {  // the same key may be there twice
    auto left = Members::remove(document, Members::pathOf(where.keys));
    if (!left) return Edited{.text = std::nullopt, .hadOurs = true};
    document = *std::move(left);
  }
  return Edited{.text = document.text(), .hadOurs = hadOurs};
}

bool isSwitchedOff(const std::string& content, const Where& where) {
  const auto read = Document::read(content);
  const auto* const document = std::get_if<Document>(&read);
  if (document == nullptr) return false;
  Path path = Members::pathOf(where.keys);
  path.emplace_back("enabled");
  const Node* const enabled = document->at(path);
  return enabled != nullptr && document->textOf(*enabled) == "false";
}

}  // namespace quillstead::cli::ServerEntry
