#include "cli/Completions.h"

#include "cli/Wording.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::cli::Completions {

namespace {

/// `text` in single quotes, for all three shells. Our texts contain a quote only as an apostrophe.
std::string quoted(std::string_view text) {
  std::string word = "'";
  for (const char character : text) {
    if (character == '\'') {
      word += R"('\'')";
    } else {
      word += character;
    }
  }
  return word + "'";
}

bool isPath(const OptionText& option) { return option.value == "FILE" || option.value == "DIR"; }

std::vector<std::string> namesOf(const std::vector<CommandText>& commands) {
  std::vector<std::string> names;
  names.reserve(commands.size());
  for (const CommandText& command : commands) names.push_back(command.name);
  return names;
}

/// All words that a command accepts, except paths.
std::vector<std::string> wordsOf(const CommandText& command) {
  std::vector<std::string> words;
  for (const OptionText& word : command.words) {
    words.insert(words.end(), word.choices.begin(), word.choices.end());
  }
  for (const OptionText& option : command.options) {
    words.insert(words.end(), option.names.begin(), option.names.end());
  }
  return words;
}

// --- bash

/// The cases for the values of a command's options.
std::string bashValues(const CommandText& command) {
  std::string cases;
  for (const OptionText& option : command.options) {
    if (option.value.empty()) continue;
    cases += "    " + command.name + ":" + option.names.back() + ") ";
    if (!option.choices.empty()) {
      cases += "COMPREPLY=($(compgen -W " + quoted(Wording::joined(option.choices, " ")) +
               " -- \"$word\"))";
    } else if (isPath(option)) {
      cases += std::string("COMPREPLY=($(compgen -") + (option.value == "DIR" ? "d" : "f") +
               " -- \"$word\"))";
    } else {
      cases += "COMPREPLY=()";
    }
    cases += "; return ;;\n";
  }
  return cases;
}

std::string bash(const ProgramText& program) {
  const std::string function = "_" + [](std::string name) {
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
  }(program.own.name);
  std::string values = bashValues(program.own);
  std::string words;
  for (const CommandText& command : program.commands) {
    values += bashValues(command);
    words += "    " + command.name + ") words=" + quoted(Wording::joined(wordsOf(command), " ")) +
             " ;;\n";
  }
  std::vector<std::string> first = namesOf(program.commands);
  const std::vector<std::string> own = wordsOf(program.own);
  first.insert(first.end(), own.begin(), own.end());
  words += "    *) words=" + quoted(Wording::joined(first, " ")) + " ;;\n";
  const std::string command = program.commands.empty() ? program.own.name : "${COMP_WORDS[1]}";
  return "# Completion of " + program.own.name + " for bash.\n" + function +
         "() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} words\n"
         "  local command=" +
         command +
         "\n"
         "  [ \"$COMP_CWORD\" -gt 1 ] || command=" +
         (program.commands.empty() ? program.own.name : std::string("''")) +
         "\n"
         "  case $command:$before in\n" +
         values + "    *) ;;\n" +
         "  esac\n"
         "  case $command in\n" +
         words +
         "  esac\n"
         "  COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n"
         "}\n"
         "complete -o default -F " +
         function + " " + program.own.name + "\n";
}

// --- zsh

/// `text`, escaped for a specification of `_arguments`.
std::string inSpecification(std::string_view text) {
  std::string safe;
  for (const char character : text) {
    if (character == '[' || character == ']' || character == ':') safe += '\\';
    safe += character;
  }
  return safe;
}

std::string zshAction(const OptionText& option) {
  if (!option.choices.empty()) return "(" + Wording::joined(option.choices, " ") + ")";
  if (option.value == "DIR") return "_files -/";
  if (option.value == "FILE") return "_files";
  return " ";
}

std::string zshArguments(const CommandText& command, const std::string& indent) {
  std::string text = indent + "_arguments -s";
  for (const OptionText& option : command.options) {
    for (const std::string& name : option.names) {
      std::string specification = name + "[" + inSpecification(option.summary) + "]";
      if (!option.value.empty()) specification += ":" + option.value + ":" + zshAction(option);
      text += " \\\n" + indent + "  " + quoted(specification);
    }
  }
  for (const OptionText& word : command.words) {
    text +=
        " \\\n" + indent + "  " +
        quoted(std::string(word.isRepeated ? "*" : "") + ":" + word.value + ":" + zshAction(word));
  }
  return text + "\n";
}

std::string zsh(const ProgramText& program) {
  std::string text =
      "#compdef " + program.own.name + "\n# Completion of " + program.own.name + " for zsh.\n";
  if (program.commands.empty()) return text + zshArguments(program.own, "");
  text += "if (( CURRENT == 2 )); then\n  local -a commands=(\n";
  for (const CommandText& command : program.commands) {
    text += "    " + quoted(command.name + ":" + command.summary) + "\n";
  }
  text += "  )\n  _describe command commands\n" + zshArguments(program.own, "  ");
  text += "else\n  local command=$words[2]\n  shift words\n  (( CURRENT-- ))\n  case $command in\n";
  for (const CommandText& command : program.commands) {
    text += "    " + command.name + ")\n" + zshArguments(command, "      ") + "      ;;\n";
  }
  return text + "  esac\nfi\n";
}

// --- fish

std::string fishOption(const std::string& start, const OptionText& option) {
  std::string line = start;
  for (const std::string& name : option.names) {
    const bool isLong = name.starts_with("--");
    line += (isLong ? " -l " : " -s ") + name.substr(isLong ? 2 : 1);
  }
  if (!option.value.empty()) line += " -r";
  if (!option.value.empty() && !isPath(option)) line += " -f";
  if (!option.choices.empty()) line += " -a " + quoted(Wording::joined(option.choices, " "));
  return line + " -d " + quoted(option.summary) + "\n";
}

std::string fish(const ProgramText& program) {
  const std::string start = "complete -c " + program.own.name;
  std::string text = "# Completion of " + program.own.name + " for fish.\n";
  const bool hasCommands = !program.commands.empty();
  const std::string none = hasCommands ? start + " -n __fish_use_subcommand" : start;
  if (hasCommands) text += none + " -f\n";
  for (const CommandText& command : program.commands) {
    text += none + " -a " + command.name + " -d " + quoted(command.summary) + "\n";
  }
  for (const OptionText& option : program.own.options) text += fishOption(none, option);
  for (const CommandText& command : program.commands) {
    const std::string given = start + " -n '__fish_seen_subcommand_from " + command.name + "'";
    for (const OptionText& option : command.options) text += fishOption(given, option);
    for (const OptionText& word : command.words) {
      if (isPath(word)) continue;
      text += given + " -f";
      if (!word.choices.empty()) text += " -a " + quoted(Wording::joined(word.choices, " "));
      text += "\n";
    }
  }
  return text;
}

}  // namespace

std::string of(const ProgramText& program, Shell shell) {
  switch (shell) {
    case Shell::bash:
      return bash(program);
    case Shell::zsh:
      return zsh(program);
    case Shell::fish:
      break;
  }
  return fish(program);
}

}  // namespace quillstead::cli::Completions
