#include "cli/CommandLine.h"

#include "cli/Help.h"
#include "cli/Setup/Harnesses.h"
#include "hook/Harness/Harnesses.h"
#include "hook/Harness/SlotFlag.h"
#include "server/LinkedLibraries.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::cli::CommandLine {

namespace {

constexpr int makesNoSense = 2;
constexpr const char* helpNames = "-h,--help";
constexpr const char* helpSummary = "Print this help";

/// The description of the command line, and what was chosen from it.
class Reader {
 public:
  Reader() {
    app_.require_subcommand(1);
    app_.set_help_flag(helpNames, helpSummary);
    // Read before --version, which ends the reading.
    app_.add_flag("--verbose", isVerbose_, "With --version: also of what it is made of")
        ->needs(app_.set_version_flag("--version", "quillstead " QUILLSTEAD_VERSION,
                                      "Print the version"));
    addSetup("install", "Set up your coding agents", Direction::install)
        .footer(
            "Without a harness: all that you have. Only what has to change in their settings "
            "does, and uninstall gives them back as they were.");
    addSetup("uninstall", "Remove what install set up from your coding agents",
             Direction::uninstall);
    addDoctor();
    addLog();
    addRecall();
    addTrust();
    addInit();
    addTexts();
    addHelp();
    app_.footer(
        "You need two commands: \"quillstead install\" sets up your coding agents, and "
        "\"quillstead "
        "doctor\" says whether it works.");
  }

  Outcome read(std::span<char* const> arguments) {
    if (arguments.empty()) return Answer{.output = {}, .error = help(), .status = makesNoSense};
    try {
      app_.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForHelp&) {
      return told(help());
    } catch (const CLI::CallForVersion&) {
      return told(app_.version() + "\n" +
                  (isVerbose_ ? server::LinkedLibraries::lines() + "\n" : ""));
    } catch (const CLI::ParseError& error) {
      return app_.get_subcommands().empty() ? unknown(arguments.front()) : refusal(error.what());
    }
    return chosen_ ? Outcome(*chosen_) : helpOfNamed();
  }

  [[nodiscard]] ProgramText described() const;

 private:
  /// A command; its options are handed over when it is the one that is given.
  template <typename Options>
  struct Added {
    CLI::App& command;
    std::shared_ptr<Options> options;
  };

  template <typename Options>
  Added<Options> add(const std::string& name, const std::string& summary) {
    Added<Options> added{*app_.add_subcommand(name, summary), std::make_shared<Options>()};
    added.command.callback([this, options = added.options] { chosen_ = *options; });
    return added;
  }

  /// A command that changes the harnesses' settings.
  CLI::App& addSetup(const std::string& name, const std::string& summary, Direction direction) {
    const auto [command, options] = add<SetupOptions>(name, summary);
    options->direction = direction;
    const std::vector<std::string> harnesses(Harnesses::names.begin(), Harnesses::names.end());
    command
        .add_option("harness", options->harnesses, "The harnesses; without one, all that you have")
        ->type_name("HARNESS")
        ->check(CLI::IsMember(harnesses));
    command.add_flag("--dry-run", options->isDryRun, "Print what would change, and write nothing");
    return command;
  }

  void addDoctor() {
    const auto [command, options] =
        add<Doctor::Options>("doctor", "Check what works, and say what to do about the rest");
    command
        .add_option("harness", options->harnesses, "The harnesses; without one, all that you have")
        ->type_name("HARNESS")
        ->check(CLI::IsMember(harnessNames()));
    command.add_flag("--json", options->json, "Print one JSON object");
    command.footer(
        "What the harnesses are set up to run is run as they would run it. Nothing is changed. The "
        "status is 1 when a check fails.");
  }

  void addLog() {
    const auto [command, options] = add<Log::Options>("log", "Sum up the hook's log");
    command
        .add_option("--since", options->since,
                    "Only prompts of this long ago or less, such as 7d or 12h")
        ->type_name("AGE")
        ->check([](const std::string& text) {
          return Log::age(text) ? "" : "\"" + text + "\" is not a number with s, m, h, d or w";
        });
    auto* const json = command.add_flag("--json", options->json, "Print one JSON object");
    auto* const page = command.add_option("--html", options->page, "Write a page with plots");
    page->type_name("FILE")->check(
        [](const std::string& text) { return text.empty() ? "the page needs a name" : ""; });
    command.add_flag("--follow", options->follow, "Print new lines as they come")
        ->excludes(json)
        ->excludes(page);
    command.footer(
        "The log is the one that QUILLSTEAD_HOOK_LOG names, else the one that install set up, else "
        "the hook's own.");
  }

  void addRecall() {
    const auto [command, options] =
        add<Recall::Options>("recall", "Show what a prompt would bring, and why");
    command.add_option("prompt", options->prompt, "The prompt, in one or more words")
        ->type_name("PROMPT")
        ->required();
    command.add_option("--harness", options->harness, "The harness that would get it")
        ->type_name("HARNESS")
        ->check(CLI::IsMember(harnessNames()));
    command.add_option("--cwd", options->directory, "The agent's working directory")
        ->type_name("DIR");
    command.add_flag("--json", options->json, "Print one JSON object");
    command.footer(
        "The hook runs as the harness would run it, but without a session, and writes no line to "
        "its log. Without --harness it is run for claude-code.");
  }

  static std::vector<std::string> harnessNames() {
    const auto names = hook::Harnesses::knownNames();
    return {names.begin(), names.end()};
  }

  void addTrust() {
    const auto [command, options] =
        add<Trust::Options>("trust", "Let a project's memory reach your agent");
    auto* const directory =
        command.add_option("directory", options->directory,
                           "The project, or one above it; without it, the project that you are in");
    directory->type_name("DIR");
    auto* const list = command.add_flag("--list", options->list, "Print what you trust");
    auto* const revoke = command.add_flag("--revoke", options->revoke, "Stop trusting it");
    list->excludes(directory)->excludes(revoke);
    command.footer(
        "A project's rules and cards come from whoever wrote to it. They reach your agent only "
        "when "
        "you have trusted the project.");
  }

  void addInit() {
    const auto [command, options] = add<Init::Options>("init", "Create your memory store");
    command.add_flag("--project", options->project,
                     "Create that of the project you are in, and trust it");
  }

  void addTexts() {
    const auto [command, options] = add<Texts::Options>("texts", "Write man pages and completions");
    command.add_option("directory", options->directory)->required();
    command.group("");  // not shown
  }

  void addHelp() {
    CLI::App& command = *app_.add_subcommand("help", "Print the help of a command");
    command.add_option("command", helpFor_, "The command")->type_name("COMMAND");
  }

  /// The help of the command that was given, or of the program.
  [[nodiscard]] std::string help() const {
    const auto given = app_.get_subcommands();
    return helpOf(given.empty() ? std::string() : given.front()->get_name()).value_or("");
  }

  /// What `quillstead help` asks for.
  [[nodiscard]] Answer helpOfNamed() const {
    if (auto text = helpOf(helpFor_)) return told(std::move(*text));
    return unknown(helpFor_);
  }

  /// The help of a command, or of the program when the name is empty; absent when there is none of
  /// that name.
  [[nodiscard]] std::optional<std::string> helpOf(const std::string& name) const {
    const ProgramText program = described();
    if (name.empty()) return Help::of(program);
    for (const CommandText& command : program.commands) {
      if (command.name == name) return Help::of(program, command);
    }
    return std::nullopt;
  }

  static Answer told(std::string text) {
    return {.output = std::move(text), .error = {}, .status = EXIT_SUCCESS};
  }

  [[nodiscard]] Answer unknown(std::string_view argument) const {
    const std::string kind = argument.starts_with('-') ? "option" : "command";
    return refusal("there is no " + kind + " \"" + std::string(argument) + "\"");
  }

  /// The complaint, how what was given is called, and where there is more.
  [[nodiscard]] Answer refusal(const std::string& complaint) const {
    std::string path = app_.get_name();
    std::string usage = path + " COMMAND ...";
    const auto given = app_.get_subcommands();
    for (const CommandText& command : described().commands) {
      if (given.empty() || given.front()->get_name() != command.name) continue;
      path.append(" ").append(command.name);
      usage = Help::usage(path, command);
    }
    return {
        .output = {},
        .error = "quillstead: " + complaint + "\nUsage: " + usage + "\nMore: " + path + " --help\n",
        .status = makesNoSense};
  }

  CLI::App app_{"Set up your coding agents' memory, and see what it does", "quillstead"};
  std::optional<Command> chosen_;
  bool isVerbose_ = false;
  std::string helpFor_;
};

// --- The description, told

OptionText textOf(const CLI::Option& option) {
  OptionText text;
  text.summary = option.get_description();
  text.isRepeated = option.get_items_expected_max() > 1;
  text.isRequired = option.get_required();
  for (const std::string& name : option.get_snames()) text.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) text.names.push_back("--" + name);
  if (option.get_items_expected_max() == 0) return text;  // a flag

  // "NAME" or "NAME:{one,other}"
  const std::string type = option.get_type_name();
  text.value = type.substr(0, type.find(':'));
  const std::size_t open = type.find('{');
  if (open == std::string::npos) return text;
  std::string_view choices = std::string_view(type).substr(open + 1);
  choices.remove_suffix(1);
  while (!choices.empty()) {
    const std::string_view choice = choices.substr(0, choices.find(','));
    text.choices.emplace_back(choice);
    choices.remove_prefix(std::min(choices.size(), choice.size() + 1));
  }
  return text;
}

CommandText textOf(const CLI::App& app) {
  CommandText text{.name = app.get_name(),
                   .summary = app.get_description(),
                   .details = app.get_footer(),
                   .options = {},
                   .words = {}};
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group().empty()) continue;  // hidden
    (option->get_positional() ? text.words : text.options).push_back(textOf(*option));
  }
  return text;
}

bool isShown(const CLI::App* command) { return !command->get_group().empty(); }

ProgramText Reader::described() const {
  ProgramText text{.own = textOf(app_), .version = QUILLSTEAD_VERSION, .commands = {}};
  for (const CLI::App* command : app_.get_subcommands(isShown)) {
    text.commands.push_back(textOf(*command));
  }
  return text;
}

// --- The other two programs, which read their command lines themselves

ProgramText hookText() {
  CLI::App app("Put your stored memory into your coding agent's context", "quillstead-hook");
  app.set_help_flag();
  const auto harnesses = hook::Harnesses::knownNames();
  const std::vector<std::string> names(harnesses.begin(), harnesses.end());
  const std::vector<std::string> slots(hook::SlotFlag::knownNames.begin(),
                                       hook::SlotFlag::knownNames.end());
  app.add_option("--harness", "The harness that runs it")
      ->type_name("HARNESS")
      ->check(CLI::IsMember(names));
  app.add_option("--slot", "What is asked for; without it, rules and memory together")
      ->type_name("SLOT")
      ->check(CLI::IsMember(slots));
  app.add_option("--event", "The event that the answer names, for Claude Code and Codex")
      ->type_name("EVENT")
      ->check(CLI::IsMember(std::vector<std::string>{"SubagentStart", "SessionStart"}));
  app.add_option("--decision", "Say in a pre-tool answer that the call is allowed, for Codex")
      ->type_name("DECISION")
      ->check(CLI::IsMember(std::vector<std::string>{"allow"}));
  app.add_flag("--help")->description("Print a short help, when it is the only option");
  app.add_flag("--version")->description("Print the version, when it is the only option");
  app.footer(
      "Harnesses run it, at every prompt and before tool calls, with a payload on its standard "
      "input. It always exits with status 0.\n\nYou need two commands: \"quillstead install\" sets "
      "up "
      "your coding agents to run it, and \"quillstead doctor\" says whether it works.");
  return {.own = textOf(app), .version = QUILLSTEAD_VERSION, .commands = {}};
}

ProgramText serverText() {
  CLI::App app("A memory server over plain Markdown files", "quillstead-mcp");
  app.set_help_flag(helpNames, helpSummary);
  app.add_flag("-V,--version")->description("Print the version");
  app.add_flag("--verbose")->description("With --version: also of what it is made of");
  app.add_option("--trust", "Use the memory of the projects in this directory and below it")
      ->type_name("DIR");
  app.footer(
      "quillstead-hook and coding agents start it, and speak the Model Context Protocol with it on "
      "its standard input and output.\n\nYou need two commands: \"quillstead install\" sets up "
      "your "
      "coding agents to use it, and \"quillstead doctor\" says whether it works.");
  return {.own = textOf(app), .version = QUILLSTEAD_VERSION, .commands = {}};
}

}  // namespace

Outcome parse(std::span<char* const> arguments) { return Reader().read(arguments); }

ProgramText description() { return Reader().described(); }

std::vector<ProgramText> descriptions() { return {description(), hookText(), serverText()}; }

}  // namespace quillstead::cli::CommandLine
