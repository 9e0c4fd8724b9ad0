#include "cli/Texts.h"

#include "cli/CommandLine.h"
#include "cli/Completions.h"
#include "cli/Context.h"
#include "cli/Help.h"
#include "support/OS/Descriptor.h"
#include "support/OS/Directory.h"

#include <fcntl.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace quillstead::cli::Texts {

namespace {

bool write(const std::string& path, std::string_view text) {
  constexpr mode_t mode = 0644;
  const OS::Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode));
  return file.isOpen() && OS::writeAll(file.number(), text);
}

}  // namespace

int run(const Options& options, const Context& context) {
  using Completions::Shell;
  constexpr mode_t mode = 0755;
  const std::string start = options.directory + "/";
  bool isWritten = OS::makeDirectories(options.directory, mode);
  for (const ProgramText& program : CommandLine::descriptions()) {
    const std::string& name = program.own.name;
    isWritten =
        isWritten && write(start + name + ".1", ManPage::of(program)) &&
        write(start + name + ".bash", Completions::of(program, Shell::bash)) &&
        write(std::string(start).append("_").append(name), Completions::of(program, Shell::zsh)) &&
        write(start + name + ".fish", Completions::of(program, Shell::fish));
  }
  if (isWritten) return EXIT_SUCCESS;
  context.console.complain(options.directory + ": cannot be written");
  return EXIT_FAILURE;
}

}  // namespace quillstead::cli::Texts

namespace quillstead::cli::ManPage {

namespace {

/// `text` as roff takes it: no hyphen that may be broken, no line that is taken for a request.
std::string roff(std::string_view text) {
  std::string safe;
  for (const char character : text) {
    if (character == '\\') {
      safe += "\\e";
    } else if (character == '-') {
      safe += "\\-";
    } else if (character == '\'') {
      safe += "\\(aq";
    } else {
      safe += character;
    }
  }
  return safe.starts_with('.') ? "\\&" + safe : safe;
}

std::string paragraphs(std::string_view text) {
  std::string all;
  while (!text.empty()) {
    const std::string_view paragraph = text.substr(0, text.find("\n\n"));
    text.remove_prefix(std::min(text.size(), paragraph.size() + 2));
    all += ".PP\n" + roff(paragraph) + "\n";
  }
  return all;
}

std::string entry(const OptionText& option) {
  std::string text = ".TP\n.B " + roff(Help::written(option)) + "\n" + roff(option.summary);
  for (const std::string& choice : option.choices) {
    text += (&choice == &option.choices.front() ? ": " : ", ") + roff(choice);
  }
  return text + ".\n";
}

std::string entries(const CommandText& command) {
  std::string text;
  for (const OptionText& word : command.words) text += entry(word);
  for (const OptionText& option : command.options) text += entry(option);
  return text;
}

std::string upperCased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char each) {
    return each >= 'a' && each <= 'z' ? static_cast<char>(each - 'a' + 'A') : each;
  });
  return text;
}

}  // namespace

std::string of(const ProgramText& program) {
  const CommandText& own = program.own;
  std::string page = ".TH " + roff(upperCased(own.name)) + R"( 1 "" "quillstead )" +
                     program.version + "\"\n.SH NAME\n" + roff(own.name) + " \\- " +
                     roff(own.summary) + "\n.SH SYNOPSIS\n";
  if (program.commands.empty()) {
    page += ".B " + roff(Help::usage(own.name, own)) + "\n";
  }
  for (const CommandText& command : program.commands) {
    page += ".B " + roff(Help::usage(own.name + " " + command.name, command)) + "\n.br\n";
  }
  page += ".SH DESCRIPTION\n" + roff(own.summary) + ".\n" + paragraphs(own.details);
  if (!program.commands.empty()) page += ".SH COMMANDS\n";
  for (const CommandText& command : program.commands) {
    page += ".SS " + roff(command.name) + "\n" + roff(command.summary) + ".\n" +
            paragraphs(command.details) + entries(command);
  }
  return page + ".SH OPTIONS\n" + entries(own);
}

}  // namespace quillstead::cli::ManPage
