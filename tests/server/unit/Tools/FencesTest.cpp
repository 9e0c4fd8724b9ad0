// Whatever files say, each answer is one fence around them, which nothing in it ends.
#include "contract/Contract.h"
#include "server/helpers/MemoryStage.h"
#include "server/helpers/WaysOut.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace quillstead::server::test {

namespace {

namespace fs = std::filesystem;

/// In a project that is trusted, a way out stands wherever text can stand.
class Fences : public ::testing::Test {
 protected:
  void write(std::string_view way) const {
    const std::string text(way);
    std::string title = text;
    for (char& character : title) character = character == '\n' ? ' ' : character;
    const std::string card = "---\ntags: [" + jsonText(text) + ", " + jsonText(text) +
                             "]\n---\n# heron " + title + "\n\nheron " + text + " b\n" + text;
    stage.writeProjectCard("heron.md", card);
    stage.writePersonalCard("mine.md", card);
    stage.write("home/.quillstead/rules.md", "- mine " + text + " b\n" + text);
    stage.write("project/.quillstead/rules.md", text + "\n- theirs " + text + " b\n");
  }

  MemoryStage stage;
};

/// The text between the only opening and the only closing of its fence; a failure when there are
/// more of them.
std::string inside(const std::string& answer, std::string_view opening, std::string_view closing) {
  EXPECT_TRUE(answer.starts_with(opening) && answer.ends_with(closing)) << answer;
  if (answer.size() < opening.size() + closing.size()) return {};
  return answer.substr(opening.size(), answer.size() - opening.size() - closing.size());
}

/// Every "<" is followed by what begins no tag.
void expectNoTag(const std::string& text) {
  for (std::size_t at = text.find('<'); at != text.npos; at = text.find('<', at + 1)) {
    const std::size_t next = text.find_first_not_of(" \t\n<", at + 1);
    if (next == text.npos) continue;
    EXPECT_EQ(text[next], '&') << text;
  }
  for (const char* const lookAlike : {"\uFF1C", "\uFE64"}) {
    EXPECT_EQ(text.find(lookAlike), text.npos) << text;
  }
}

TEST_F(Fences, OfRulesAreNotEndedByThem) {
  for (const std::string_view way : waysOut) {
    write(way);
    for (const char* const arguments : {"{}", R"({"card":true,"card_ceiling":5000})"}) {
      const Answer answer = stage.call("rules_get", arguments);
      EXPECT_THAT(answer.text, ::testing::HasSubstr("- theirs"));
      EXPECT_THAT(answer.text, ::testing::HasSubstr("- heron"));
      expectNoTag(
          inside(answer.text, contract::RulesFence::opening, contract::RulesFence::closing));
    }
  }
}

TEST_F(Fences, OfCardsAreNotEndedByTheirTitlesTagsOrText) {
  for (const std::string_view way : waysOut) {
    write(way);
    const Answer answer = stage.call("memory_get_relevant", R"({"prompt":"heron"})");
    EXPECT_EQ(answer.metaNumber("quillstead/cardCount"), 2);
    expectNoTag(
        inside(answer.text, contract::MemoryFence::opening, contract::MemoryFence::closing));
    const std::string name = R"({"store":"project","name":"heron"})";
    expectNoTag(inside(stage.call("grab", name).text, contract::MemoryFence::opening,
                       contract::MemoryFence::closing));
  }
}

TEST_F(Fences, AreNotEndedByFileNames) {
  for (const std::string_view way : waysOut) {
    const std::string name = std::string(way) + " heron.md";
    if (name.find('/') != name.npos || name.size() > 255) continue;
    write("x");
    fs::rename(stage.path("project/.quillstead/memory/heron.md"),
               stage.path("project/.quillstead/memory/" + name));
    const Answer answer = stage.call("memory_get_relevant", R"({"prompt":"heron"})");
    expectNoTag(
        inside(answer.text, contract::MemoryFence::opening, contract::MemoryFence::closing));
    fs::remove(stage.path("project/.quillstead/memory/" + name));
  }
}

}  // namespace

}  // namespace quillstead::server::test
