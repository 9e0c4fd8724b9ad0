// Man pages and completions: each is what its reader takes, and tells what there is.
#include "cli/CommandLine.h"
#include "cli/Completions.h"
#include "cli/Texts.h"
#include "cli/UserRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace quillstead::cli {

namespace {

using ::testing::HasSubstr;

/// What a shell prints for a command, its complaints included.
std::string printedBy(const std::string& command) {
  std::string printed;
  std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
  EXPECT_NE(pipe, nullptr);
  for (int character = 0; pipe && (character = std::fgetc(pipe)) != EOF;) {
    printed += static_cast<char>(character);
  }
  EXPECT_EQ(pipe ? pclose(pipe) : -1, 0) << command << "\n" << printed;
  return printed;
}

bool isThere(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

class Texts : public ::testing::Test {
 protected:
  void SetUp() override { EXPECT_EQ(home.run({"texts", home.path("texts")}).status, 0); }

  /// The result of completing the last of the words in bash.
  [[nodiscard]] std::string completed(const std::string& program, const std::string& words,
                                      int word) const {
    return printedBy("bash -c 'source " + home.path("texts/") + program + ".bash; COMP_WORDS=(" +
                     words + "); COMP_CWORD=" + std::to_string(word) + "; _" +
                     (program == "quillstead" ? "quillstead" : "quillstead_hook") +
                     "; echo \"${COMPREPLY[@]}\"'");
  }

  test::MadeUpHome home;
};

TEST_F(Texts, AreTakenByTheirReaders) {
  for (const ProgramText& program : CommandLine::descriptions()) {
    const std::string start = home.path("texts/");
    const std::string name = program.own.name;
    SCOPED_TRACE(name);
    EXPECT_EQ(printedBy("bash -n " + start + name + ".bash"), "");
    for (const auto& [reader, command] :
         {std::pair<std::string, std::string>{"zsh", "zsh -n " + start + "_" + name},
          {"fish", "fish -n " + start + name + ".fish"},
          {"groff", "groff -man -ww -z " + start + name + ".1"}}) {
      if (isThere(reader)) {
        EXPECT_EQ(printedBy(command), "");
      }
    }
  }
}

TEST_F(Texts, OfManPagesTellEveryCommandAndOption) {
  for (const ProgramText& program : CommandLine::descriptions()) {
    std::string page = unit::contentsOf(home.path("texts/" + program.own.name + ".1"));
    for (std::size_t at = 0; (at = page.find("\\-")) != std::string::npos;) page.erase(at, 1);
    const auto tells = [&page](const CommandText& command) {
      EXPECT_THAT(page, HasSubstr(command.name));
      for (const OptionText& option : command.options) {
        EXPECT_THAT(page, HasSubstr(option.names.back()));
      }
    };
    tells(program.own);
    for (const CommandText& command : program.commands) tells(command);
  }
}

TEST_F(Texts, CompleteWhatCanStandThere) {
  EXPECT_THAT(completed("quillstead", "quillstead d", 1), HasSubstr("doctor"));
  EXPECT_EQ(completed("quillstead", "quillstead recall --harness cu", 3), "cursor\n");
  EXPECT_EQ(completed("quillstead", "quillstead log --fo", 2), "--follow\n");
  EXPECT_EQ(completed("quillstead", "quillstead doctor co", 2), "codex\n");
  EXPECT_EQ(completed("quillstead-hook", "quillstead-hook --slot pre", 2), "pretool\n");
  EXPECT_EQ(completed("quillstead", "quillstead te", 1), "\n");
}

TEST_F(Texts, AreNoCommandForPeople) {
  EXPECT_THAT(home.run({"help"}).output, ::testing::Not(HasSubstr("texts")));
  EXPECT_EQ(home.run({"texts", "/dev/null/x"}).status, 1);
}

}  // namespace

}  // namespace quillstead::cli
