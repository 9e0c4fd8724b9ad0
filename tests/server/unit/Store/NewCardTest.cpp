#include "server/Store/Card.h"
#include "server/Store/NewCard.h"
#include "unit/helpers/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace quillstead::server {

namespace {

const std::chrono::system_clock::time_point instant{std::chrono::seconds(1'795'248'000)};

Store personal(const unit::TemporaryDirectory& directory) {
  return {.kind = Store::Kind::personal, .root = directory / "store"};
}

TEST(NewCard, IsWrittenWithFrontMatterAndHeading) {
  const NewCard card{.text = "  Use tabs.\n",
                     .title = "Style",
                     .tags = {"code", "a, b"},
                     .session = "s\n1",
                     .subagent = "agent 7"};
  EXPECT_EQ(NewCards::composed(card, instant),
            "---\ntags: [code, \"a, b\"]\ncreated: 2026-11-21T08:00:00Z\nsession: \"s\\n1\"\n"
            "subagent: agent 7\n---\n\n# Style\n\nUse tabs.\n");
}

TEST(NewCard, FindsATitleInItsText) {
  struct Case {
    std::string text;
    std::optional<std::string> given;
    std::string_view title;
    std::string_view body;
  };
  for (const Case& one : {Case{"# Own\n\nbody", {}, "Own", "body"},
                          {"# Own\n\nbody", "Own", "Own", "body"},
                          {"# Own\n\nbody", "Given", "Given", "# Own\n\nbody"},
                          {"First line.\nSecond.", {}, "First line.", "First line.\nSecond."},
                          {"x", " \n ", "x", "x"},
                          {"x", "two\nlines", "two lines", "x"},
                          {"x", "C#", "C#", "x"},
                          {"x", "C #", "C #", "x"},
                          {"x", "##", "##", "x"},
                          {"x", "# x", "# x", "x"},
                          {"# C #\n\nbody", {}, "C", "body"},
                          {"---\nx", {}, "---", "---\nx"},
                          {"x", "```", "```", "x"}}) {
    SCOPED_TRACE(one.text);
    const std::string text = NewCards::composed(
        {.text = one.text, .title = one.given, .tags = {}, .session = {}, .subagent = {}}, instant);
    const Card card = Card::parse(text, "file.md");
    EXPECT_EQ(card.title, one.title);
    EXPECT_EQ(card.body, one.body);
  }
}

TEST(NewCard, ShortensATitleThatIsALongLine) {
  std::string line;
  for (int count = 0; count < 100; ++count) line += "é";
  const std::string text = NewCards::composed(
      {.text = line, .title = {}, .tags = {}, .session = {}, .subagent = {}}, instant);
  EXPECT_EQ(Card::parse(text, "f.md").title, line.substr(0, 160) + "…");
}

TEST(NewCard, GetsANameOfItsOwn) {
  const unit::TemporaryDirectory directory;
  const NewCard card{.text = "x", .title = "Same", .tags = {}, .session = {}, .subagent = {}};
  for (int count = 0; count < 3; ++count) {
    const auto outcome = NewCards::add(personal(directory), card);
    ASSERT_TRUE(std::holds_alternative<AddedCard>(outcome));
    const std::string& name = std::get<AddedCard>(outcome).fileName;
    EXPECT_THAT(name, ::testing::MatchesRegex("same-[0-9a-z]{6}\\.md"));
    EXPECT_THAT(unit::contentsOf(directory / "store/memory/" + name),
                ::testing::EndsWith("# Same\n\nx\n"));
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory / "store/memory"), {}), 3);
}

TEST(NewCard, IsForTheUserOnlyInThePersonalStoreAndAsTheMaskSaysInAProject) {
  using std::filesystem::perms;
  const unit::TemporaryDirectory directory;
  const NewCard card{.text = "x", .title = {}, .tags = {}, .session = {}, .subagent = {}};
  const mode_t before = umask(002);
  for (const Store::Kind kind : {Store::Kind::personal, Store::Kind::project}) {
    const Store store{.kind = kind, .root = directory / std::string(nameOf(kind))};
    const auto outcome = NewCards::add(store, card);
    ASSERT_TRUE(std::holds_alternative<AddedCard>(outcome));
    const std::string file = store.root + "/memory/" + std::get<AddedCard>(outcome).fileName;
    const auto mode = std::filesystem::status(file).permissions();
    EXPECT_EQ(static_cast<unsigned>(mode), kind == Store::Kind::personal ? 0600U : 0664U);
  }
  umask(before);
}

TEST(NewCard, IsRefusedWhereItsDirectoryCannotBe) {
  const unit::TemporaryDirectory directory;
  unit::writeFile(directory / "store", "a file");
  const auto outcome = NewCards::add(
      personal(directory), {.text = "x", .title = {}, .tags = {}, .session = {}, .subagent = {}});
  EXPECT_TRUE(std::holds_alternative<NotAdded>(outcome));
}

TEST(NewCard, IsRefusedWhenTheMemoryDirectoryLeadsOutOfTheStore) {
  const unit::TemporaryDirectory directory;
  std::filesystem::create_directories(directory / "store");
  std::filesystem::create_directories(directory / "elsewhere");
  std::filesystem::create_directory_symlink(directory / "elsewhere", directory / "store/memory");
  const auto outcome = NewCards::add(
      personal(directory), {.text = "x", .title = {}, .tags = {}, .session = {}, .subagent = {}});
  ASSERT_TRUE(std::holds_alternative<NotAdded>(outcome));
  EXPECT_THAT(std::get<NotAdded>(outcome).reason,
              ::testing::EndsWith("/store/memory is a symbolic link out of the store"));
  EXPECT_TRUE(std::filesystem::is_empty(directory / "elsewhere"));
}

}  // namespace

}  // namespace quillstead::server
