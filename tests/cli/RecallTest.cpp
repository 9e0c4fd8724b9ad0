// What `quillstead recall` shows of a prompt, with the hook and the server that were built with it.
#include "cli/UserRun.h"
#include "helpers/HarnessFacts.h"
#include "support/JSON/Reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace quillstead::cli {

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Recall : public ::testing::Test {
 protected:
  void SetUp() override {
    home.write(".quillstead/rules.md", "- Answer briefly.\n");
    home.write(".quillstead/memory/deploy.md",
               "---\ntags: [release]\n---\n# Deploying the shop\nPress the green button.\n");
    home.write(".quillstead/memory/tea.md", "# Tea\nNever coffee.\n");
    fs::create_directories(home.path("work"));
    home.set("QUILLSTEAD_HOOK_LOG", home.path("hook.log"));
  }

  [[nodiscard]] server::test::ProgramEnd recall(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"recall", "--cwd", home.path("work")});
    return home.run(arguments);
  }

  test::MadeUpHome home;
};

/// What one JSON answer says.
struct Told {
  explicit Told(const std::string& text) : document(JSON::read(text)) {
    EXPECT_TRUE(document) << text;
  }
  [[nodiscard]] JSON::View member(std::string_view key) const {
    return document ? document->object().find(key) : JSON::View();
  }
  [[nodiscard]] std::string text(std::string_view key) const {
    return std::string(member(key).string().value_or("no string"));
  }
  [[nodiscard]] std::int64_t number(std::string_view key) const {
    const auto found = member(key).number();
    return found ? found->integer().value_or(-1) : -1;
  }
  [[nodiscard]] std::vector<std::string> texts(std::string_view key) const {
    std::vector<std::string> all;
    for (const JSON::View each : member(key).elements())
      all.emplace_back(each.string().value_or(""));
    return all;
  }
  /// The texts of one member of each object in a list.
  [[nodiscard]] std::vector<std::string> texts(std::string_view key, std::string_view of) const {
    std::vector<std::string> all;
    for (const JSON::View each : member(key).elements()) {
      all.emplace_back(each.object()->find(of).string().value_or(""));
    }
    return all;
  }

  /// The same of numbers.
  [[nodiscard]] std::vector<std::int64_t> numbers(std::string_view key, std::string_view of) const {
    std::vector<std::int64_t> all;
    for (const JSON::View each : member(key).elements()) {
      const auto number = each.object()->find(of).number();
      all.push_back(number ? number->integer().value_or(-1) : -1);
    }
    return all;
  }

  std::optional<JSON::Document> document;
};

TEST_F(Recall, ShowsTheTextsTheirSizeAndWhyEachCardCame) {
  const auto end = recall({"How", "is the SHOP", "deployed? A release!"});
  EXPECT_EQ(end.status, 0) << end.error;
  for (const char* const part :
       {"claude-code, in ", " of 10,000, in ", "\nrules, ", "- Answer briefly.", "\nmemory, ",
        "Press the green button.", "  1. Deploying the shop (personal: deploy.md): ", "shop",
        "release", "Trail: card=1 rules=1 cards=1\n"}) {
    EXPECT_THAT(end.output, HasSubstr(part));
  }
  EXPECT_THAT(end.output, Not(HasSubstr("coffee")));
  EXPECT_THAT(end.output, Not(HasSubstr("\x1B")));
}

TEST_F(Recall, NamesTheWordsThatMatchedInWhateverCase) {
  home.write(".quillstead/memory/tea.md", "# Earl Grey\n\nIn the afternoon.\n");
  EXPECT_THAT(recall({"--json", "earl", "GREY"}).output, HasSubstr(R"("words":["earl","grey"])"));
}

TEST_F(Recall, NamesABeginningThatMatched) {
  home.write(".quillstead/memory/cat.md", "# 猫の手\n\nA proverb.\n");
  EXPECT_THAT(recall({"--json", "proverb 猫"}).output, HasSubstr(R"("words":["proverb","猫"])"));
}

TEST_F(Recall, NumbersTheCardsFromOneInTheirOrder) {
  home.write(".quillstead/memory/closed.md", "# The shop is closed\nOn Mondays.\n");
  const Told told(recall({"--json", "shop"}).output);
  EXPECT_EQ(told.texts("cards", "file").size(), 2U);
  EXPECT_THAT(told.numbers("cards", "rank"), ElementsAre(1, 2));
}

TEST_F(Recall, TellsScriptsTheSame) {
  for (const HarnessFacts& facts : harnessFacts()) {
    const std::string& harness = facts.name;
    SCOPED_TRACE(harness);
    const auto end = recall({"--json", "--harness", harness, "shop", "release"});
    EXPECT_EQ(end.status, 0) << end.error;
    const Told told(end.output);
    EXPECT_EQ(told.text("harness"), harness);
    EXPECT_EQ(told.text("cwd"), home.path("work"));
    EXPECT_EQ(told.number("budget"), facts.budget ? static_cast<std::int64_t>(*facts.budget) : -1);
    EXPECT_THAT(told.texts("parts", "kind"), ElementsAre("rules", "memory"));
    EXPECT_THAT(told.texts("cards", "file"), ElementsAre("deploy.md"));
    EXPECT_THAT(told.texts("cards", "store"), ElementsAre("personal"));
    EXPECT_THAT(told.texts("trail"), ElementsAre("card=1", "rules=1", "cards=1"));
    EXPECT_THAT(told.texts("missed"), IsEmpty());
    std::int64_t size = 0;
    std::vector<std::int64_t> sizes;
    for (const std::string& text : told.texts("parts", "text")) {
      sizes.push_back(static_cast<std::int64_t>(text.size()));
      size += sizes.back() + 2;
    }
    EXPECT_EQ(told.numbers("parts", "bytes"), sizes);
    EXPECT_EQ(told.number("bytes"), size - 2);
  }
}

TEST_F(Recall, ShowsWhatTheBudgetCut) {
  std::string rules;
  while (rules.size() < 6'000) rules += "- A rule of some length.\n";
  home.write(".quillstead/rules.md", rules);
  for (int number = 0; number < 8; ++number) {
    std::string text = "parrot";
    for (int word = 0; word < 100; ++word) {
      text += " w" + std::to_string(number) + "x" + std::to_string(word);
    }
    text += "\n";
    home.write(".quillstead/memory/parrot" + std::to_string(number) + ".md",
               "# Parrot number " + std::to_string(number) + "\n" + text);
  }
  const auto end = recall({"--json", "--harness", "cursor", "parrot"});
  EXPECT_EQ(end.status, 0) << end.error;
  const Told told(end.output);
  const auto sent = std::count_if(
      told.member("cards").elements().begin(), told.member("cards").elements().end(),
      [](JSON::View card) { return card.object()->find("sent").boolean().value_or(false); });
  EXPECT_GT(told.number("cards_cut"), 0);
  EXPECT_EQ(told.number("cards_cut") + sent,
            static_cast<std::int64_t>(told.texts("cards", "file").size()));
  EXPECT_LE(told.number("bytes"), 8'000);
  EXPECT_THAT(recall({"--harness", "cursor", "parrot"}).output,
              ::testing::AllOf(HasSubstr("; left out, the budget is full\n"),
                               HasSubstr("Cut to fit the budget: ")));
}

TEST_F(Recall, TakesWordsThatAreCommandsForThePrompt) {
  home.write(".quillstead/memory/doctor.md", "# Doctor Miller\nShe is in on Mondays.\n");
  EXPECT_THAT(recall({"doctor"}).output, HasSubstr("She is in on Mondays."));
  EXPECT_THAT(recall({"--", "--doctor"}).output, HasSubstr("She is in on Mondays."));
}

TEST_F(Recall, LeavesNoTrace) {
  EXPECT_EQ(recall({"shop"}).status, 0);
  EXPECT_FALSE(fs::exists(home.path("hook.log")));
  std::vector<std::string> found;
  for (const auto& entry : fs::recursive_directory_iterator(home.path(""))) {
    const std::string name = entry.path();
    if (entry.is_regular_file() && name.find("/.cache/quillstead/") == std::string::npos &&
        name.find("/Library/Caches/quillstead/") == std::string::npos) {
      found.push_back(entry.path().filename());
    }
  }
  EXPECT_THAT(found, ::testing::UnorderedElementsAre("rules.md", "deploy.md", "tea.md"));
}

TEST_F(Recall, SaysWhenTheServerIsBroken) {
  home.set("QUILLSTEAD_MCP_BIN", home.path("missing"));
  const auto end = recall({"--json", "shop"});
  EXPECT_EQ(end.status, 1);
  const Told told(end.output);
  EXPECT_EQ(told.number("bytes"), 0);
  EXPECT_THAT(told.texts("missed"), ElementsAre("rules=MISS:no-envelope", "cards=MISS:declined"));
  EXPECT_THAT(told.texts("cards"), IsEmpty());
  EXPECT_THAT(recall({"shop"}).output, HasSubstr("The agent gets nothing."));
}

TEST_F(Recall, FailsWhenTheServerAnswersForRulesOnly) {
  home.write("halfServer",
             "#!/bin/sh\n"
             "read -r first && read -r second\n"
             "case $second in *memory_get_relevant*) exit ;; esac\n"
             "printf '%s\\n' \"$first\" \"$second\" | '" QUILLSTEAD_MCP_BINARY "'\n");
  fs::permissions(home.path("halfServer"), fs::perms::owner_all);
  home.set("QUILLSTEAD_MCP_BIN", home.path("halfServer"));
  const auto end = recall({"--json", "shop"});
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(Told(end.output).texts("missed"), ElementsAre("cards=MISS:no-envelope"));
}

TEST_F(Recall, SaysWhenThereIsNoHook) {
  fs::copy_file(QUILLSTEAD_BINARY, home.path("quillstead"));
  const auto end = server::test::ProgramRun({.executable = home.path("quillstead"),
                                             .arguments = {"recall", "shop"},
                                             .environment = home.environment(),
                                             .input = {}})
                       .finish();
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(end.error, HasSubstr(home.path("quillstead-hook") + ": cannot be started"));
}

TEST_F(Recall, RefusesWhatItCannotDo) {
  EXPECT_EQ(home.run({"recall"}).status, 2);
  EXPECT_EQ(recall({"--harness", "emacs", "x"}).status, 2);
  const auto end = home.run({"recall", "--cwd", home.path("nowhere"), "x"});
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(end.error, HasSubstr("there is no such directory"));
}

}  // namespace

}  // namespace quillstead::cli
