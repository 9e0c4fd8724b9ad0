#include "cli/Setup/CodexServer.h"

#include "cli/Setup/TomlLines.h"
#include "support/JSON/Writer.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::cli::CodexServer {

namespace {

using JSONC::Complaint;

constexpr std::array<std::string_view, 2> variables{"QUILLSTEAD_HOME", "XDG_CACHE_HOME"};

Complaint complaintAt(const toml::source_position& place, std::string_view what) {
  return {.line = place.line, .column = place.column, .what = std::string(what)};
}

/// Like JSON's, but TOML wants the delete character escaped too.
std::string tomlString(std::string_view text) {
  std::string written = JSON::write(JSON::Value(text), JSON::Slashes::plain);
  for (std::size_t i = written.find('\x7F'); i != std::string::npos; i = written.find('\x7F', i)) {
    written.replace(i, 1, "\\u007F");
  }
  return written;
}

std::string variablesText() {
  std::string text;
  for (const std::string_view name : variables)
    text += (text.empty() ? "[" : ", ") + tomlString(name);
  return text + "]";
}

/// A parsed file.
struct Config {
  TomlLines lines;
  toml::table root;

  [[nodiscard]] const toml::node* servers() const { return root.get("mcp_servers"); }

  [[nodiscard]] const toml::node* entry() const {
    const auto* table = servers() == nullptr ? nullptr : servers()->as_table();
    return table == nullptr ? nullptr : table->get("quillstead");
  }

  /// The path of our server; absent when the entry runs something else.
  [[nodiscard]] const toml::value<std::string>* program() const {
    const auto* table = entry() == nullptr ? nullptr : entry()->as_table();
    const auto* command = table == nullptr ? nullptr : table->get_as<std::string>("command");
    const std::string_view path = command == nullptr ? std::string_view() : command->get();
    return path.substr(path.rfind('/') + 1) == "quillstead-mcp" ? command : nullptr;
  }
};

std::variant<Config, Complaint> read(std::string text) {
  toml::parse_result parsed = toml::parse(std::string_view(text));
  if (!parsed) return complaintAt(parsed.error().source().begin, parsed.error().description());
  Config config{.lines = TomlLines(std::move(text)), .root = std::move(parsed).table()};
  for (const auto& [node, name] :
       {std::pair(config.servers(), "mcp_servers"), std::pair(config.entry(), "quillstead")}) {
    if (node == nullptr || node->is_table()) continue;
    return complaintAt(node->source().begin, "\"" + std::string(name) + "\" is not a table");
  }
  return config;
}

/// Everything except our entry, and except its table when it has no other entry.
toml::table others(toml::table root) {
  if (auto* servers = root.get_as<toml::table>("mcp_servers")) {
    servers->erase("quillstead");
    if (servers->empty()) root.erase("mcp_servers");
  }
  return root;
}

/// Why the file has to be edited by hand.
Complaint byHand(const Config& config, std::string_view what) {
  const toml::node* node = config.entry() != nullptr ? config.entry() : config.servers();
  const toml::source_position top{.line = 1, .column = 1};
  return complaintAt(node == nullptr ? top : node->source().begin, what);
}

/// True when `after` differs from `before` only in our entry.
bool keepsOthers(const Config& before, const Config& after) {
  return others(before.root) == others(after.root);
}

std::string tableText(const std::string& lineEnd, const std::string& server) {
  return "[mcp_servers.quillstead]" + lineEnd + "command = " + tomlString(server) + lineEnd +
         "env_vars = " + variablesText() + lineEnd;
}

/// The variables to pass on, including ours.
void updateVariables(const Config& config, const toml::array& list, std::string& text) {
  std::string missing;
  for (const std::string_view name : variables) {
    bool isThere = false;
    for (const toml::node& one : list) isThere = isThere || one.value<std::string_view>() == name;
    if (!isThere) missing += (list.empty() && missing.empty() ? "" : ", ") + tomlString(name);
  }
  const std::size_t place = list.empty() ? config.lines.place(list.source().begin) + 1
                                         : config.lines.place(list.back().source().end);
  text.insert(place, missing);
}

/// Adds the variables after the program: on a line of their own, formatted like the program's, or
/// in the same braces.
void addVariables(const Config& config, const toml::table& entry, std::string& text) {
  const toml::node& program = *entry.get("command");
  const std::size_t end = config.lines.place(program.source().end);
  if (entry.is_inline()) {
    text.insert(end, ", env_vars = " + variablesText());
    return;
  }
  const auto& key = entry.find("command")->first;
  const std::size_t line = key.source().begin.line;
  const std::size_t begin = config.lines.begin(line);
  const std::string before = text.substr(begin, config.lines.place(key.source().begin) - begin);
  const std::size_t next = config.lines.begin(program.source().end.line + 1);
  const bool isCut = next == text.size() && !text.ends_with('\n');
  const std::string lineEnd = config.lines.lineEnd();
  text.insert(next, (isCut ? lineEnd : "") + before + "env_vars = " + variablesText() +
                        (isCut ? "" : lineEnd));
}

/// The text with the existing entry updated.
std::string updated(const Config& config, const std::string& server) {
  std::string text = config.lines.text();
  const auto& program = *config.program();
  const auto& entry = *config.entry()->as_table();
  const std::size_t begin = config.lines.place(program.source().begin);
  const std::size_t end = config.lines.place(program.source().end);

  // From the end backwards, so that earlier positions stay valid.
  const toml::node* list = entry.get("env_vars");
  const bool isBefore = list != nullptr && config.lines.place(list->source().begin) < begin;
  const auto variablesToo = [&] {
    if (list == nullptr) {
      addVariables(config, entry, text);
    } else if (list->is_array()) {
      updateVariables(config, *list->as_array(), text);
    }
  };
  if (!isBefore) variablesToo();
  if (program.get() != server) text.replace(begin, end - begin, tomlString(server));
  if (isBefore) variablesToo();
  return text;
}

/// The text with the table at its end.
std::string added(const std::optional<std::string>& before, const std::string& server) {
  const TomlLines lines(before.value_or(""));
  return before ? *before + lines.lineEnd() + tableText(lines.lineEnd(), server)
                : tableText(lines.lineEnd(), server);
}

/// The text without the marked lines of our entry, and without the line end that was added before
/// a table at the end. Absent when nothing is left of a file that was made with the table.
std::optional<std::string> without(const TomlLines& lines, const std::vector<bool>& marks) {
  const auto from = std::find(marks.begin(), marks.end(), true);
  const auto first = static_cast<std::size_t>(from - marks.begin());
  const auto next = static_cast<std::size_t>(std::find(from, marks.end(), false) - marks.begin());
  const bool isAtEnd = lines.begin(next) == lines.text().size();
  if (!isAtEnd || !lines.isHeader(first)) return lines.without(marks);
  std::string text = lines.text().substr(0, lines.begin(first));
  if (text.empty()) return std::nullopt;
  if (text.ends_with('\n')) text.pop_back();
  if (text.ends_with('\r')) text.pop_back();
  return text;
}

}  // namespace

EditOutcome install(const std::optional<std::string>& before, const std::string& server) {
  auto old = read(before.value_or(""));
  if (auto* complaint = std::get_if<Complaint>(&old)) return std::move(*complaint);
  const auto& config = std::get<Config>(old);
  const bool hadOurs = config.program() != nullptr;
  if (config.entry() != nullptr && !hadOurs) return Edited{.text = before, .hadOurs = false};
  std::string text = hadOurs ? updated(config, server) : added(before, server);
  const auto checked = read(text);
  const auto* after = std::get_if<Config>(&checked);
  const bool isRight = after != nullptr && after->program() != nullptr &&
                       after->program()->get() == server && keepsOthers(config, *after);
  if (!isRight) return byHand(config, "this cannot be edited by lines; add the server by hand");
  return Edited{.text = std::move(text), .hadOurs = hadOurs};
}

EditOutcome uninstall(const std::string& before) {
  auto old = read(before);
  if (auto* complaint = std::get_if<Complaint>(&old)) return std::move(*complaint);
  const auto& config = std::get<Config>(old);
  if (config.program() == nullptr) return Edited{.text = before, .hadOurs = false};

  const auto& servers = *config.servers()->as_table();
  std::vector<bool> marks(config.lines.count() + 2);
  const auto entry = servers.find("quillstead");
  config.lines.mark(entry->second, entry->first.source().begin.line, marks);
  auto text = without(config.lines, marks);
  const auto checked = read(text.value_or(""));
  const auto* after = std::get_if<Config>(&checked);
  const bool isRight = after != nullptr && after->entry() == nullptr && keepsOthers(config, *after);
  if (!isRight) return byHand(config, "this cannot be edited by lines; remove the server by hand");
  return Edited{.text = std::move(text), .hadOurs = true};
}

bool isSwitchedOff(const std::string& content) {
  const auto found = read(content);
  const auto* const config = std::get_if<Config>(&found);
  const toml::node* const entry = config == nullptr ? nullptr : config->entry();
  return entry != nullptr && (*entry->as_table())["enabled"].value<bool>() == false;
}

}  // namespace quillstead::cli::CodexServer
