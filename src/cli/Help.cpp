#include "cli/Help.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quillstead::cli::Help {

namespace {

constexpr std::size_t widest = 80;  ///< columns of a terminal that everyone has

struct Row {
  std::string left;
  std::string right;
};

/// `text` wrapped to `width`. Every line but the first is indented by `indent` spaces.
std::string filled(std::string_view text, std::size_t indent, std::size_t width) {
  std::string lines;
  std::size_t column = 0;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(text.size(), word.size() + 1));
    if (column > 0 && column + 1 + word.size() > width) {
      lines.append("\n").append(indent, ' ');
      column = 0;
    } else if (column > 0) {
      lines += ' ';
      ++column;
    }
    lines += word;
    column += word.size();
  }
  return lines;
}

/// The rows in two columns below a heading; nothing when there are none.
std::string table(std::string_view heading, const std::vector<Row>& rows) {
  if (rows.empty()) return {};
  constexpr std::size_t indent = 2;
  std::size_t left = 0;
  for (const Row& row : rows) left = std::max(left, row.left.size());
  const std::size_t right = indent + left + indent;

  std::string text = "\n" + std::string(heading) + "\n";
  for (const Row& row : rows) {
    text.append(indent, ' ').append(row.left).append(right - indent - row.left.size(), ' ');
    text.append(filled(row.right, right, widest - right)).append("\n");
  }
  return text;
}

Row rowOf(const OptionText& option) {
  std::string summary = option.summary;
  for (const std::string& choice : option.choices) {
    summary.append(&choice == &option.choices.front() ? ": " : ", ").append(choice);
  }
  return {written(option), std::move(summary)};
}

std::string tables(const CommandText& command) {
  std::vector<Row> words;
  for (const OptionText& word : command.words) words.push_back(rowOf(word));
  std::vector<Row> options;
  for (const OptionText& option : command.options) options.push_back(rowOf(option));
  return table("Arguments", words) + table("Options", options);
}

std::string paragraphs(std::string_view text) {
  std::string all;
  while (!text.empty()) {
    const std::string_view paragraph = text.substr(0, text.find("\n\n"));
    text.remove_prefix(std::min(text.size(), paragraph.size() + 2));
    all.append("\n").append(filled(paragraph, 0, widest)).append("\n");
  }
  return all;
}

}  // namespace

std::string written(const OptionText& option) {
  std::string text;
  for (const std::string& name : option.names) {
    if (!text.empty()) text += ", ";
    text += name;
  }
  if (!option.names.empty() && !option.value.empty()) text += ' ';
  return text + option.value;
}

std::string usage(const std::string& path, const CommandText& command) {
  std::string text = path;
  for (const OptionText& word : command.words) {
    const std::string name = word.value + (word.isRepeated ? "..." : "");
    text.append(" ").append(word.isRequired ? name : "[" + name + "]");
  }
  for (const OptionText& option : command.options) {
    if (option.names.back() == "--help") continue;
    text.append(" [").append(option.names.back());
    text.append(option.value.empty() ? "" : " " + option.value).append("]");
  }
  return text;
}

std::string of(const ProgramText& program) {
  const CommandText& own = program.own;
  std::string text = own.summary + ".\n\nUsage: ";
  text += program.commands.empty() ? usage(own.name, own) : own.name + " COMMAND ...";
  std::vector<Row> commands;
  for (const CommandText& command : program.commands) {
    commands.push_back({command.name, command.summary});
  }
  return text + "\n" + table("Commands", commands) + tables(own) + paragraphs(own.details);
}

std::string of(const ProgramText& program, const CommandText& command) {
  const std::string path = program.own.name + " " + command.name;
  return command.summary + ".\n\nUsage: " + usage(path, command) + "\n" + tables(command) +
         paragraphs(command.details);
}

}  // namespace quillstead::cli::Help
