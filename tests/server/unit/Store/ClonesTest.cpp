#include "server/Store/NewCard.h"
#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <variant>

namespace quillstead::server::test {

namespace {

namespace fs = std::filesystem;

/// Clones of one repository, each with a store in it. git itself carries the cards.
class Clones : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(git("init", "--quiet --bare -b main " + stage.path("origin"))) << "git is missing";
    stage.write("project/.quillstead/rules.md", "- rule\n");
    ASSERT_TRUE(git("init", "--quiet -b main"));
    ASSERT_TRUE(git("remote", "add origin " + stage.path("origin")));
    ASSERT_TRUE(committed("project") && git("push", "--quiet -u origin main"));
  }

  /// Runs git in a clone, apart from whatever the machine has configured.
  [[nodiscard]] bool git(const std::string& verb, const std::string& arguments,
                         const std::string& clone = "project") const {
    const std::string command =
        "cd " + stage.path(clone) +
        " && GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_SYSTEM=/dev/null git -c user.name=a -c "
        "user.email=a@example.org -c commit.gpgsign=false " +
        verb + " " + arguments + " >>" + stage.path("git.log") + " 2>&1";
    return std::system(command.c_str()) == 0;  // NOLINT(cert-env33-c,concurrency-mt-unsafe)
  }

  [[nodiscard]] bool committed(const std::string& clone) const {
    return git("add", "--all", clone) && git("commit", "--quiet -m x", clone);
  }

  [[nodiscard]] std::string log() const { return unit::contentsOf(stage.path("git.log")); }

  MemoryStage stage;
};

TEST_F(Clones, MergeWhatTheyAddedAndLoseNothing) {
  constexpr int each = 100;
  const std::initializer_list<std::string> clones{"amber", "birch", "cedar"};
  for (const std::string& clone : clones) {
    ASSERT_TRUE(git("clone", "--quiet " + stage.path("origin") + " " + stage.path(clone)));
    const Store store{.kind = Store::Kind::project, .root = stage.path(clone + "/.quillstead")};
    for (int number = 0; number < each; ++number) {
      const NewCard card{.text = "fact " + std::to_string(number) + " of " + clone,
                         .title = "Same title",
                         .tags = {},
                         .session = {},
                         .subagent = {}};
      ASSERT_TRUE(std::holds_alternative<AddedCard>(NewCards::add(store, card)));
    }
    ASSERT_TRUE(committed(clone));
  }
  for (const std::string& clone : clones) {
    ASSERT_TRUE(git("pull", "--quiet --no-rebase --no-edit", clone)) << log();
    ASSERT_TRUE(git("push", "--quiet", clone)) << log();
  }
  ASSERT_TRUE(git("pull", "--quiet --ff-only", "project")) << log();
  const fs::path memory = stage.path("project/.quillstead/memory");
  EXPECT_EQ(std::distance(fs::directory_iterator(memory), {}), 3 * each);
  // On a busy machine one call may not get to know so many new cards.
  const auto areKnown = [&] {
    return stage.call("rules_get").text.find("Memory holds 300 cards") != std::string::npos;
  };
  for (int call = 0; call < 100 && !areKnown(); ++call) {
  }
  for (const std::string& clone : clones) {
    EXPECT_THAT(stage.call("memory_get_relevant", R"({"prompt":"fact )" + clone + "\"}").text,
                ::testing::HasSubstr("of " + clone));
  }
}

TEST_F(Clones, ShowNeitherSideOfACardThatBothChangedUntilItIsSolved) {
  stage.writeProjectCard("a.md", "# Heron\n\nThe heron stands.\n");
  ASSERT_TRUE(committed("project") && git("push", "--quiet"));
  ASSERT_TRUE(git("clone", "--quiet " + stage.path("origin") + " " + stage.path("other")));
  const auto change = [&](const std::string& clone, const std::string& fact) {
    stage.write(clone + "/.quillstead/memory/a.md", "# Heron\n\nThe heron " + fact + ".\n");
    stage.write(clone + "/.quillstead/rules.md", "- the rule " + fact + "\n");
    return committed(clone);
  };
  ASSERT_TRUE(change("other", "flies") && git("push", "--quiet", "other"));
  ASSERT_TRUE(change("project", "sleeps"));
  EXPECT_THAT(stage.recalled("heron"), ::testing::ElementsAre("Heron"));
  EXPECT_FALSE(git("pull", "--quiet --no-rebase --no-edit"));

  const std::string card = stage.path("project/.quillstead/memory/a.md");
  ASSERT_THAT(unit::contentsOf(card), ::testing::HasSubstr("======="));
  EXPECT_TRUE(stage.recalled("heron").empty());
  EXPECT_THAT(stage.call("grab", R"({"name":"a"})").text, ::testing::HasSubstr("merge conflict"));
  const std::string rules = stage.call("rules_get").text;
  EXPECT_THAT(rules, ::testing::HasSubstr(
                         "rules.md were left out: it contains an unresolved merge conflict"));
  EXPECT_THAT(rules, ::testing::Not(::testing::AnyOf(::testing::HasSubstr("the rule"),
                                                     ::testing::HasSubstr("Heron"))));

  stage.writeProjectCard("a.md", "# Heron\n\nThe heron flies and sleeps.\n");
  EXPECT_THAT(stage.recalled("heron"), ::testing::ElementsAre("Heron"));
}

}  // namespace

}  // namespace quillstead::server::test
