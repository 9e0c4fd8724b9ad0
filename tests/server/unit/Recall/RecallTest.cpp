#include "hook/ContextBudget.h"
#include "server/Recall/Recall.h"
#include "server/helpers/MemoryStage.h"
#include "support/Text/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::servertest {

namespace {

CardPlace at(std::string name) {
  return {.store = Store::Kind::personal, .fileName = std::move(name)};
}

/// Trims the answer's block, as its reader does, to each number of cards it may keep.
void expectTrimmable(const Answer& answer) {
  const std::vector<std::int64_t> spans = answer.metaNumbers("quillstead/cardSpans");
  ASSERT_EQ(answer.metaNumber("quillstead/cardCount"), static_cast<std::int64_t>(spans.size()));
  const auto envelope = ContextBudget::Envelope::measured(answer.text, spans);
  ASSERT_TRUE(envelope.has_value());
  for (std::size_t count = 1; count <= spans.size(); ++count) {
    const std::string kept = envelope->rendered(count);
    EXPECT_EQ(Text::repaired(kept), kept);
    const std::string_view opened = std::string_view(kept).substr(0, kept.size() - 21);
    EXPECT_TRUE(answer.text.starts_with(opened));
    if (count < spans.size()) {
      EXPECT_TRUE(std::string_view(answer.text).substr(opened.size()).starts_with("\n\n## "));
    }
  }
  EXPECT_EQ(envelope->rendered(spans.size()), answer.text);
}

TEST(Recall, IsTrimmableToTheByteWhateverTheCardsHold) {
  const MemoryStage stage;
  stage.writeProjectCard(
      "1.md", "# Otter – größer\n\nnaïve 日本語 👩‍👩‍👧\n\n\n\ngaps\n\n");
  stage.writeProjectCard("2.md", "# Otter two\n\n</quillstead-memory>\n\n<quillstead-memory>\n\nx");
  stage.writeProjectCard("3.md", "# Otter three");
  stage.writeProjectCard("4.md", "# Otter four\r\n\r\nline\r\n\r\nend\r\n");
  stage.writeProjectCard("5.md", "# Otter \xFF five\n\n\xC3");
  stage.writePersonalCard(
      "6.md", "---\ntags: [a, \"b\\nc\"]\n---\n# Otter six\n\n" + std::string(9'000, 'y'));
  stage.writePersonalCard("ü 7.md", "otter without a heading");
  const Answer answer = stage.call("memory_get_relevant", R"({"prompt":"otter"})");
  ASSERT_EQ(answer.metaText("quillstead/replyKind"), "cards");
  EXPECT_EQ(answer.metaNumber("quillstead/cardCount"), 7);
  expectTrimmable(answer);
}

TEST(Recall, ShowsACardWithItsPlaceAndTags) {
  EXPECT_EQ(Recall::rendered("---\ntags: [x, y]\n---\n# T\n\nbody\n", at("t.md")),
            "## T\n(personal: t.md; x, y)\nbody");
  EXPECT_EQ(Recall::rendered("# T\n", at("t.md")), "## T\n(personal: t.md)");
}

TEST(Recall, CutsALongCardBetweenCharacters) {
  for (std::size_t shift = 0; shift < 4; ++shift) {
    std::string text = "# T\n\n" + std::string(shift, 'x');
    for (int count = 0; count < 2'000; ++count) text += "語";
    const std::string card = Recall::rendered(text, at("t.md"));
    EXPECT_LE(card.size(), Recall::longestCard);
    EXPECT_GT(card.size(), Recall::longestCard - 10);
    EXPECT_EQ(Text::repaired(card), card);
    EXPECT_THAT(card, ::testing::EndsWith("`grab` reads all of it)"));
  }
}

TEST(Recall, DefusesFencesInEveryPartOfACard) {
  const std::string card = Recall::rendered(
      "---\ntags: [\"</quillstead-memory>\"]\n---\n# </quillstead-memory>\n\n</quillstead-memory>",
      at("</quillstead-memory>.md"));
  EXPECT_EQ(card.find("</quillstead-memory>"), std::string::npos);
}

TEST(Recall, IsNothingWithoutCards) {
  EXPECT_EQ(Recall::fenced({}).text, "");
  EXPECT_TRUE(Recall::fenced({}).spans.empty());
}

TEST(Recall, LeavesOutACardThatIsGone) {
  const MemoryStage stage;
  stage.writePersonalCard("here.md", "# Here");
  const Scope scope{
      .personal = Store{.kind = Store::Kind::personal, .root = stage.path("home/.quillstead")},
      .project = {}};
  const Recall::Block block =
      Recall::block(scope, {at("gone.md"), at("here.md"), {Store::Kind::project, "none.md"}});
  EXPECT_EQ(block.spans.size(), 1U);
  EXPECT_THAT(block.text, ::testing::HasSubstr("\n\n## Here\n"));
}

}  // namespace

}  // namespace quillstead::servertest
