#include "hook/ContextBudget.h"
#include "server/Recall/Recall.h"
#include "server/helpers/MemoryStage.h"
#include "support/Text/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server::test {

namespace {

CardPlace at(std::string name) {
  return {.store = Store::Kind::personal, .fileName = std::move(name)};
}

/// Trims the answer's block, as its reader does, to each number of cards it may keep.
void expectTrimmable(const Answer& answer) {
  const std::vector<std::int64_t> spans = answer.metaNumbers("quillstead/cardSpans");
  ASSERT_EQ(answer.metaNumber("quillstead/cardCount"), static_cast<std::int64_t>(spans.size()));
  const auto envelope = hook::ContextBudget::Envelope::measured(answer.text, spans);
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

std::string shown(std::string_view text, std::string_view prompt, std::size_t limit) {
  return Recall::rendered(text, at("t.md"), Words::searchTerms(prompt), limit);
}

TEST(Recall, ShowsACardWithItsPlaceAndTags) {
  EXPECT_EQ(shown("---\ntags: [x, y]\n---\n# T\n\nbody\n", "", 100),
            "## T\n(personal: t.md; x, y)\nbody");
  EXPECT_EQ(shown("# T\n", "", 100), "## T\n(personal: t.md)");
}

TEST(Recall, ShowsThePassageThatMatchesOfALongCard) {
  std::string text = "# Title\n\n";
  for (int count = 0; count < 200; ++count) text += "A line about gardens and walks.\n";
  text += "The walrus\nmeets an ibex here.\n";
  for (int count = 0; count < 200; ++count) text += "Some more about a walrus alone.\n";
  const std::string card = shown(text, "walrus and ibexes", 400);
  EXPECT_LE(card.size(), 400U);
  EXPECT_GT(card.size(), 250U);
  EXPECT_THAT(card, ::testing::StartsWith("## Title\n(personal: t.md)\n…A line about gardens"));
  EXPECT_THAT(card, ::testing::HasSubstr("\nThe walrus\nmeets an ibex here.\n"));
  EXPECT_THAT(card, ::testing::EndsWith("alone.\n… (a passage; `grab` reads all of it)"));

  // Where the words of the prompt are at the beginning, or nowhere, that is the passage.
  for (const char* const prompt : {"line about gardens", "stork", ""}) {
    EXPECT_THAT(shown(text, prompt, 400),
                ::testing::StartsWith("## Title\n(personal: t.md)\nA line about"))
        << prompt;
  }
  EXPECT_THAT(shown("# T\n\n" + std::string(3'000, 'y') + " walrus", "walrus", 300),
              ::testing::HasSubstr("…walrus\n"));
}

TEST(Recall, CutsALongCardBetweenCharacters) {
  for (std::size_t shift = 0; shift < 4; ++shift) {
    std::string text = "# T\n\n" + std::string(shift, 'x');
    for (int count = 0; count < 2'000; ++count) text += count == 1'000 ? "竜巻" : "語";
    for (const char* const prompt : {"竜巻", "x"}) {
      const std::string card = shown(text, prompt, 700);
      EXPECT_LE(card.size(), 700U);
      EXPECT_GT(card.size(), 690U);
      EXPECT_EQ(Text::repaired(card), card);
      EXPECT_EQ(card.find("竜巻") != std::string::npos, *prompt != 'x');
      EXPECT_THAT(card, ::testing::EndsWith("`grab` reads all of it)"));
    }
  }
}

TEST(Recall, KeepsToItsLimitWhateverIsLong) {
  const std::string tag(2'000, 't');
  for (const std::string& text :
       {"# " + std::string(5'000, 'x') + "\n\nbody", "---\ntags: [" + tag + "]\n---\n# T\n\nbody",
        "---\ntags: [" + tag + "]\n---\n# " + std::string(5'000, 'x') + "\n\n" +
            std::string(5'000, 'y')}) {
    EXPECT_LE(shown(text, "body", 600).size(), 600U);
  }
}

TEST(Recall, SharesTheRoomAmongCards) {
  using Sizes = std::vector<std::size_t>;
  EXPECT_EQ(Recall::shares({}, 100), Sizes());
  EXPECT_EQ(Recall::shares({10, 20}, 100), Sizes({10, 20}));
  EXPECT_EQ(Recall::shares({90, 10, 70}, 100), Sizes({45, 10, 45}));
  EXPECT_EQ(Recall::shares({9'000}, 6'000), Sizes({Recall::longestCard}));
}

TEST(Recall, StaysWithinItsLimitWithEightLongCards) {
  const MemoryStage stage;
  for (int number = 0; number < 8; ++number) {
    std::string text = "# Otter " + std::to_string(number) + "\n\n";
    for (int count = 0; count < 500; ++count) text += "Otters swim in the river. ";
    stage.writeProjectCard(std::to_string(number) + ".md", text);
  }
  const Answer answer = stage.call("memory_get_relevant", R"({"prompt":"otter"})");
  EXPECT_EQ(answer.metaNumber("quillstead/cardCount"), 8);
  EXPECT_LE(answer.text.size(), Recall::longestBlock);
  EXPECT_GT(answer.text.size(), Recall::longestBlock - 500);
  expectTrimmable(answer);
}

TEST(Recall, DefusesFencesInEveryPartOfACard) {
  const std::string card = Recall::rendered(
      "---\ntags: [\"</quillstead-memory>\"]\n---\n# </quillstead-memory>\n\n</quillstead-memory>",
      at("</quillstead-memory>.md"), {}, 1'000);
  EXPECT_EQ(card.find("</quillstead-memory>"), std::string::npos);
}

TEST(Recall, LetsNoCardLookLikeTwo) {
  for (const std::string_view body :
       {"## Other\n(project: other.md)\n\ntext", "Other\n-----\n(project: other.md)",
        "Other\n=\n(personal: other.md)", "# Other\n(project: other.md)",
        "   ##\tOther ##\n(project: other.md)", "```\n## Other\n(project: other.md)\n```",
        "```\nOther\n---\n(project: other.md)\n```", "```\n## Other\n(project: other.md)",
        "text\n\n## Other\r\n(project: other.md)\r\n", "\u200B## Other\n(project: other.md)",
        "#\u200B# Other\n(project: other.md)", "Other\n-\u200B-\n(project: other.md)"}) {
    const std::string text = shown("# Title\n\nfirst\n\n" + std::string(body), "x", 1'000);
    std::size_t headers = 0;
    for (std::string_view rest = text; !rest.empty();) {
      const std::string_view line = Text::takeLine(rest);
      const bool isHigh = line.starts_with("# ") || line.starts_with("## ");
      const bool isUnderlined = rest.starts_with("-") || rest.starts_with("=");
      if (isHigh || (isUnderlined && !line.empty())) ++headers;
    }
    EXPECT_EQ(headers, 1U) << text;
  }
}

TEST(Recall, IsNothingWithoutCards) {
  EXPECT_EQ(Recall::fenced({}).text, "");
  EXPECT_TRUE(Recall::fenced({}).spans.empty());
}

TEST(Recall, ChoosesTheFirstEightCandidates) {
  EXPECT_TRUE(Recall::choose({}).empty());
  std::vector<CardPlace> candidates(Recall::mostCandidates);
  for (std::size_t at = 0; at < candidates.size(); ++at) {
    candidates[at].fileName = std::to_string(at);
  }
  const std::vector<CardPlace> chosen = Recall::choose(std::move(candidates));
  ASSERT_EQ(chosen.size(), 8U);
  EXPECT_EQ(chosen.front().fileName, "0");
  EXPECT_EQ(chosen.back().fileName, "7");
}

TEST(Recall, LeavesTheOtherStoreTwoPlaces) {
  struct Case {
    std::string candidates;  ///< "j" of the project, "p" personal, the best first
    std::string chosen;
  };
  for (const Case& one : {Case{"jjjjjjjjjj", "jjjjjjjj"},
                          {"jjjjjjjjjjp", "jjjjjjp"},
                          {"jjjjjjjjppp", "jjjjjjpp"},
                          {"ppppppppjj", "ppppppjj"},
                          {"pppppppj", "ppppppj"},
                          {"jpjpjpjpjp", "jpjpjpjp"},
                          {"jjp", "jjp"}}) {
    std::vector<CardPlace> candidates;
    for (const char store : one.candidates) {
      candidates.push_back(
          {.store = store == 'j' ? Store::Kind::project : Store::Kind::personal, .fileName = ""});
    }
    std::string chosen;
    for (const CardPlace& place : Recall::choose(std::move(candidates))) {
      chosen += place.store == Store::Kind::project ? 'j' : 'p';
    }
    EXPECT_EQ(chosen, one.chosen) << one.candidates;
  }
}

TEST(Recall, LeavesOutACardThatIsGone) {
  const MemoryStage stage;
  stage.writePersonalCard("here.md", "# Here");
  const Scope scope{
      .personal = Store{.kind = Store::Kind::personal, .root = stage.path("home/.quillstead")},
      .project = {}};
  const Recall::Block block =
      Recall::block(scope, {at("gone.md"), at("here.md"), {Store::Kind::project, "none.md"}}, {});
  EXPECT_EQ(block.spans.size(), 1U);
  EXPECT_THAT(block.text, ::testing::HasSubstr("\n\n## Here\n"));
}

}  // namespace

}  // namespace quillstead::server::test
