#include "server/Store/StoreFiles.h"
#include "unit/helpers/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillstead::server {

namespace {

namespace fs = std::filesystem;
using StoreFiles::NoText;

class StoreFilesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(directory / "store/memory/sub");
    unit::writeFile(directory / "outside.md", "outside");
  }

  [[nodiscard]] Store store() const {
    return {.kind = Store::Kind::project, .root = directory / "store"};
  }

  void put(std::string_view name, std::string_view text) const {
    unit::writeFile(directory / "store/memory/" + std::string(name), text);
  }

  [[nodiscard]] std::vector<std::string> cards() const {
    std::vector<std::string> names;
    const OS::Descriptor opened = StoreFiles::openCards(store());
    StoreFiles::forEachCardName(opened, [&](const char* name) {
      if (StoreFiles::cardStamp(opened, Store::Kind::project, name)) names.emplace_back(name);
    });
    return names;
  }

  /// The text, or the reason in brackets.
  [[nodiscard]] std::string card(const std::string& name) const {
    return described(StoreFiles::readCardOrLink(store(), name));
  }

  static std::string described(const StoreFiles::TextOrReason& read) {
    if (const auto* file = std::get_if<StoreFiles::FileText>(&read)) return file->text;
    switch (std::get<NoText>(read)) {
      case NoText::missing:
        return "[missing]";
      case NoText::outsideStore:
        return "[outside]";
      case NoText::someoneElses:
        return "[someone else's]";
      case NoText::everybodys:
        return "[everybody's]";
      case NoText::notAFile:
        return "[not a file]";
      case NoText::tooLarge:
        return "[too large]";
      case NoText::binary:
        return "[binary]";
      case NoText::conflict:
        return "[conflict]";
      case NoText::unreadable:
        break;
    }
    return "[unreadable]";
  }

  unit::TemporaryDirectory directory;
};

TEST_F(StoreFilesTest, LeavesOutNotesForPeople) {
  put("tea.md", "# Tea\n<!-- ask Anna -->\nNever coffee.\n");
  unit::writeFile(directory / "store/rules.md", "<!--\n- No rule.\n-->\n- A rule.\n");
  const OS::Descriptor opened = StoreFiles::openCards(store());
  EXPECT_EQ(described(StoreFiles::readCard(opened, Store::Kind::project, "tea.md")),
            "# Tea\nNever coffee.\n");
  EXPECT_EQ(card("tea.md"), "# Tea\nNever coffee.\n");
  EXPECT_EQ(described(StoreFiles::readRules(store())), "- A rule.\n");
}

TEST_F(StoreFilesTest, SeesRegularMarkdownFilesOnly) {
  put("a.md", "a");
  put("ü.md", "u");
  put(".hidden.md", "h");
  put("notes.txt", "n");
  fs::create_directory(directory / "store/memory/directory.md");
  fs::create_symlink("a.md", directory / "store/memory/link.md");
  mkfifo((directory / "store/memory/pipe.md").c_str(), 0600);
  EXPECT_THAT(cards(), ::testing::UnorderedElementsAre("a.md", "ü.md"));
}

TEST_F(StoreFilesTest, GivesAFilesTextOrTheReasonWhyNot) {
  put("plain.md", "plain – naïve");
  put("empty.md", "");
  put("marked.md", "\xEF\xBB\xBFmarked");
  put("broken.md",
      "a\xFF"
      "b");
  put("binary.md", std::string_view("a\0b", 3));
  put("largest.md", std::string(StoreFiles::largestFile, 'x'));
  put("larger.md", std::string(StoreFiles::largestFile + 1, 'x'));
  mkfifo((directory / "store/memory/pipe.md").c_str(), 0600);
  EXPECT_EQ(card("plain.md"), "plain – naïve");
  EXPECT_EQ(card("empty.md"), "");
  EXPECT_EQ(card("marked.md"), "marked");
  EXPECT_EQ(card("broken.md"),
            "a\uFFFD"
            "b");
  EXPECT_EQ(card("binary.md"), "[binary]");
  EXPECT_EQ(card("largest.md").size(), StoreFiles::largestFile);
  EXPECT_EQ(card("larger.md"), "[too large]");
  EXPECT_EQ(card("pipe.md"), "[not a file]");
  EXPECT_EQ(card("sub"), "[not a file]");
  EXPECT_EQ(card("none.md"), "[missing]");
}

TEST_F(StoreFilesTest, GivesNeitherSideOfAConflict) {
  const std::string marked = "# A\n<<<<<<< HEAD\nours\n=======\ntheirs\n>>>>>>> main\n";
  put("conflict.md", marked);
  put("windows.md", "<<<<<<< HEAD\r\nx\r\n=======\r\ny\r\n>>>>>>> main\r\n");
  put("coded.md", "```\n" + marked + "```\n");
  put("told.md",
      "git writes `<<<<<<< HEAD` and `>>>>>>> main`\n    <<<<<<< HEAD\n    >>>>>>> main");
  put("quoted.md", ">>>>>>> a\n<<<<<<< b\n");
  for (const char* const name : {"conflict.md", "windows.md", "coded.md"}) {
    EXPECT_EQ(card(name), "[conflict]") << name;
  }
  for (const char* const name : {"told.md", "quoted.md"}) {
    EXPECT_NE(card(name), "[conflict]") << name;
  }
  unit::writeFile(directory / "store/rules.md", marked);
  EXPECT_EQ(described(StoreFiles::readRules(store())), "[conflict]");
}

TEST_F(StoreFilesTest, FollowsAnAbsoluteLinkThatStaysInTheStore) {
  put("target.md", "inside");
  fs::create_symlink(directory / "store/memory/target.md", directory / "store/memory/link.md");
  EXPECT_EQ(card("link.md"), "inside");
}

TEST_F(StoreFilesTest, PassesOverWhatIsNotTheUsersOwn) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  constexpr uid_t stranger = 1001;
  put("theirs.md", "theirs");
  put("ours.md", "ours");
  fs::create_symlink("ours.md", directory / "store/memory/link.md");
  for (const char* const name : {"theirs.md", "link.md"}) {
    const std::string path = directory / "store/memory/" + name;
    ASSERT_EQ(lchown(path.c_str(), stranger, stranger), 0);
  }
  EXPECT_THAT(cards(), ::testing::ElementsAre("ours.md"));
  EXPECT_EQ(card("theirs.md"), "[someone else's]");
  EXPECT_EQ(card("link.md"), "[someone else's]");
  ASSERT_EQ(chown((directory / "store/memory").c_str(), stranger, stranger), 0);
  EXPECT_TRUE(cards().empty());
}

TEST_F(StoreFilesTest, TellsWhatOfThePersonalStoreOthersMayRead) {
  Store personal = store();
  personal.kind = Store::Kind::personal;
  put("a.md", "a");
  put("b.md", "b");
  const auto only = [&](const char* name, fs::perms mode) {
    fs::permissions(directory / "store" + std::string(name), mode);
  };
  only("", static_cast<fs::perms>(0710));
  only("/memory", static_cast<fs::perms>(0750));
  only("/memory/a.md", static_cast<fs::perms>(0600));
  only("/memory/b.md", static_cast<fs::perms>(0644));
  const auto wide = PrivateFiles::widerThanPrivate(personal);
  ASSERT_EQ(wide.size(), 3U);
  EXPECT_EQ(wide[0].path, directory / "store");
  EXPECT_EQ(wide[1].path, directory / "store/memory");
  EXPECT_EQ(wide[1].mode, 0750U);
  EXPECT_EQ(wide[2].path, directory / "store/memory/b.md");

  only("/memory", fs::perms::owner_all);
  EXPECT_EQ(PrivateFiles::widerThanPrivate(personal).size(), 1U) << "no way to the cards";
  only("", fs::perms::owner_all);
  only("/memory", static_cast<fs::perms>(0755));
  EXPECT_TRUE(PrivateFiles::widerThanPrivate(personal).empty()) << "no way into the store";
}

TEST_F(StoreFilesTest, FollowsLinksWithinTheStoreOnly) {
  put("target.md", "inside");
  fs::create_symlink("target.md", directory / "store/memory/within.md");
  fs::create_symlink("../../outside.md", directory / "store/memory/out.md");
  fs::create_symlink(directory / "outside.md", directory / "store/memory/absolute.md");
  fs::create_symlink("nowhere", directory / "store/memory/dangling.md");
  fs::create_symlink("loop.md", directory / "store/memory/loop.md");
  EXPECT_EQ(card("within.md"), "inside");
  for (const char* const name : {"out.md", "absolute.md", "dangling.md", "loop.md"}) {
    EXPECT_EQ(card(name), "[outside]") << name;
  }
}

TEST_F(StoreFilesTest, ReadsRulesAndRefusesALinkOut) {
  EXPECT_EQ(described(StoreFiles::readRules(store())), "[missing]");
  fs::create_symlink("../outside.md", directory / "store/rules.md");
  EXPECT_EQ(described(StoreFiles::readRules(store())), "[outside]");
  fs::remove(directory / "store/rules.md");
  unit::writeFile(directory / "store/shared.md", "- rule\n");
  fs::create_symlink("shared.md", directory / "store/rules.md");
  EXPECT_EQ(described(StoreFiles::readRules(store())), "- rule\n");
}

TEST_F(StoreFilesTest, FollowsAMemoryDirectoryThatStaysInTheStore) {
  fs::remove_all(directory / "store/memory");
  fs::create_directories(directory / "store/cards");
  unit::writeFile(directory / "store/cards/a.md", "a");
  fs::create_directory_symlink("cards", directory / "store/memory");
  EXPECT_THAT(cards(), ::testing::ElementsAre("a.md"));

  fs::remove(directory / "store/memory");
  fs::create_directories(directory / "store-but-longer");
  fs::create_directory_symlink("../store-but-longer", directory / "store/memory");
  EXPECT_FALSE(StoreFiles::openCards(store()).isOpen());
}

TEST_F(StoreFilesTest, MakesThePersonalDirectoryForItsUserOnly) {
  const Store personal{.kind = Store::Kind::personal, .root = directory / "new/personal"};
  EXPECT_FALSE(StoreFiles::openCards(personal).isOpen());
  EXPECT_TRUE(StoreFiles::makeCards(personal).isOpen());
  EXPECT_EQ(fs::status(directory / "new/personal").permissions(), fs::perms::owner_all);
}

TEST_F(StoreFilesTest, HasNoCardsInADirectoryItMayNotRead) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
  put("a.md", "a");
  fs::permissions(directory / "store/memory", fs::perms::none);
  EXPECT_TRUE(cards().empty());
  fs::permissions(directory / "store/memory", fs::perms::owner_all);
}

}  // namespace

}  // namespace quillstead::server
