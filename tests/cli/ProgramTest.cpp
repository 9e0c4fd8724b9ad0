// The built program, as a user runs it: what it prints where, and its exit status.
#include "cli/CommandLine.h"
#include "cli/UserRun.h"
#include "server/LinkedLibraries.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace quillstead::cli {

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

TEST(Program, PrintsTheHelpAsAComplaintWhenNothingIsAsked) {
  const test::MadeUpHome home;
  const auto end = home.run({});
  EXPECT_EQ(end.status, 2);
  EXPECT_THAT(end.output, IsEmpty());
  EXPECT_THAT(end.error, HasSubstr("Usage: quillstead COMMAND"));
  EXPECT_EQ(end.error, home.run({"help"}).output);
}

TEST(Program, PrintsHelpAndVersionWhenAsked) {
  const test::MadeUpHome home;
  struct Case {
    std::vector<std::string> arguments;
    std::string beginning;
  };
  std::vector<Case> cases{
      {{"help"}, "Set up your coding agents' memory"},
      {{"--help"}, "Set up your coding agents' memory"},
      {{"-h"}, "Set up your coding agents' memory"},
      {{"--version"}, "quillstead " QUILLSTEAD_VERSION "\n"},
      {{"help", "help"}, "Print the help of a command.\n\nUsage: quillstead help [COMMAND]\n"}};
  for (const CommandText& command : CommandLine::description().commands) {
    const std::string beginning = command.summary + ".\n\nUsage: quillstead " + command.name;
    cases.push_back({{command.name, "--help"}, beginning});
    cases.push_back({{command.name, "-h"}, beginning});
    cases.push_back({{"help", command.name}, beginning});
  }
  for (const Case& each : cases) {
    const auto end = home.run(each.arguments);
    SCOPED_TRACE(::testing::PrintToString(each.arguments));
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.output, StartsWith(each.beginning));
    EXPECT_THAT(end.error, IsEmpty());
  }
}

TEST(Program, TellsWhatItIsMadeOfWhenAskedForMore) {
  const test::MadeUpHome home;
  const std::string version = "quillstead " QUILLSTEAD_VERSION "\n";
  for (const auto& arguments : std::vector<std::vector<std::string>>{{"--version", "--verbose"},
                                                                     {"--verbose", "--version"}}) {
    const auto end = home.run(arguments);
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.output, StartsWith(version + "SQLite 3."));
    EXPECT_EQ(end.output, version + server::LinkedLibraries::lines() + "\n");
  }
  EXPECT_EQ(home.run({"--version"}).output, version);
  EXPECT_EQ(home.run({"--verbose"}).status, 2);
}

TEST(Program, NamesTheTwoCommandsToBeginWithInEveryHelp) {
  for (const char* const program :
       {QUILLSTEAD_BINARY, QUILLSTEAD_HOOK_BINARY, QUILLSTEAD_MCP_BINARY}) {
    const auto end =
        server::test::ProgramRun(
            {.executable = program, .arguments = {"--help"}, .environment = {}, .input = {}})
            .finish();
    SCOPED_TRACE(program);
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.output, HasSubstr("quillstead install"));
    EXPECT_THAT(end.output, HasSubstr("quillstead doctor"));
  }
}

TEST(Program, RefusesACommandLineThatMakesNoSense) {
  const test::MadeUpHome home;
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
      {{"nothing"}, "there is no command \"nothing\"\nUsage: quillstead COMMAND ..."},
      {{""}, "there is no command \"\"\n"},
      {{"--nothing"}, "there is no option \"--nothing\"\n"},
      {{"help", "nothing"}, "there is no command \"nothing\"\n"},
      {{"init", "--nothing"}, "--nothing\nUsage: quillstead init"},
      {{"init", "init"}, "init\nUsage: quillstead init"},
      {{"help", "help", "help"},
       "help\nUsage: quillstead help [COMMAND]\nMore: quillstead help --help"},
  };
  for (const auto& [arguments, complaint] : cases) {
    const auto end = home.run(arguments);
    SCOPED_TRACE(::testing::PrintToString(arguments));
    EXPECT_EQ(end.status, 2);
    EXPECT_THAT(end.output, IsEmpty());
    EXPECT_THAT(end.error, StartsWith("quillstead: "));
    EXPECT_THAT(end.error, HasSubstr(complaint));
  }
}

TEST(Program, NamesPlacesInAHomeThatEndsInASlash) {
  test::MadeUpHome home;
  home.set("HOME", home.path("") + "/");
  EXPECT_THAT(home.run({"log"}).error,
              AllOf(StartsWith("quillstead: there is no log. Looked for: " + home.path("")),
                    Not(HasSubstr("//"))));
}

/// What a shell prints when it runs the command, and its status at the end.
std::string shown(const std::string& command) {
  FILE* const shell = popen(command.c_str(), "r");
  if (shell == nullptr) return "sh cannot be run";
  std::string text;
  std::array<char, 1024> piece{};
  while (std::fgets(piece.data(), piece.size(), shell) != nullptr) text += piece.data();
  const int status = pclose(shell);
  return text + "status " + std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1);
}

TEST(Program, SaysWhyItsResultCannotBeWritten) {
  const std::string help = QUILLSTEAD_BINARY " help 2>&1 ";
  const std::string complaint = "quillstead: the results cannot be written to standard output: ";
  EXPECT_EQ(shown(help + ">&-"), complaint + "Bad file descriptor\nstatus 1");
#if defined(__linux__)
  EXPECT_EQ(shown(help + ">/dev/full"), complaint + "No space left on device\nstatus 1");
#endif
}

TEST(Program, SaysNothingWhenTheReaderWentAway) {
  const test::MadeUpHome home;
  const std::string said = home.path("said");
  const std::string untilItFails =
      "{ while " QUILLSTEAD_BINARY " help 2>>" + said + "; do :; done; } | true";
  EXPECT_EQ(shown(untilItFails + "; cat " + said), "status 0");
}

}  // namespace

}  // namespace quillstead::cli
