// What lies in the cache directory between two calls: who may read it, what it still holds, and
// what becomes of it when somebody else put it there.
#include "server/Index/Database.h"
#include "server/helpers/ForgedDatabase.h"
#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace quillstead::server::test {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::ElementsAre;

class IndexAtRest : public ::testing::Test {
 protected:
  void SetUp() override { stage.writeProjectCard("a.md", "# A\n\nwalrus"); }

  /// True when any file of the cache directory holds `text`.
  [[nodiscard]] bool isAtRest(const std::string& text) const {
    bool found = false;
    for (const auto& entry : fs::directory_iterator(cache())) {
      found = found || unit::contentsOf(entry.path()).find(text) != std::string::npos;
    }
    return found;
  }

  [[nodiscard]] std::string cache() const { return stage.path(MemoryStage::indexPlace()); }

  static mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
  }

  MemoryStage stage;
};

TEST_F(IndexAtRest, IsClosedToOthersWhoeverMadeIt) {
  const mode_t before = umask(0);
  fs::create_directories(cache());
  fs::permissions(cache(), fs::perms::all);
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_EQ(modeOf(cache()), 0700U);
  EXPECT_EQ(modeOf(stage.indexFile()), 0600U);

  fs::permissions(stage.indexFile(), fs::perms::all);
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_EQ(modeOf(stage.indexFile()), 0600U);

  fs::remove_all(cache());
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_EQ(modeOf(cache()), 0700U);
  for (const auto& entry : fs::directory_iterator(cache())) {
    EXPECT_EQ(modeOf(entry.path()), 0600U) << entry.path();
  }
  umask(before);
}

TEST_F(IndexAtRest, IsNotPutIntoADirectoryOfAnothers) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can make a directory another user's";
  constexpr uid_t somebody = 12'345;
  fs::create_directories(cache());
  ASSERT_EQ(chown(cache().c_str(), somebody, somebody), 0);
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_TRUE(fs::is_empty(cache()));
}

TEST_F(IndexAtRest, IsMadeAnewInPlaceOfAnothersFile) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can make a file another user's";
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  constexpr uid_t somebody = 12'345;
  ASSERT_EQ(chown(stage.indexFile().c_str(), somebody, somebody), 0);
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  struct stat status {};
  ASSERT_EQ(lstat(stage.indexFile().c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, geteuid());
}

TEST_F(IndexAtRest, HoldsNoTextThatIsGone) {
  for (int number = 0; number < 60; ++number) {
    stage.writeProjectCard("f" + std::to_string(number) + ".md",
                           "# F\n\nfiller text " + std::to_string(number));
  }
  const std::string secret = "zanzibarsecret";
  stage.writeProjectCard("b.md", "---\ntags: [" + secret + "tag]\n---\n# " + secret + "title\n\n" +
                                     secret + "body and " + secret + "rest");
  EXPECT_THAT(stage.recalled(secret + "body"), ElementsAre(secret + "title"));
  EXPECT_TRUE(isAtRest(secret));

  stage.writeProjectCard("b.md", "# Changed\n\nnothing of it");
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_FALSE(isAtRest(secret));

  const std::string second = "quetzalcoatl";
  stage.writeProjectCard("c.md", "# C\n\n" + second + std::string(100'000, ' ') + second + "end");
  EXPECT_THAT(stage.recalled(second), ElementsAre("C"));
  EXPECT_TRUE(isAtRest(second));
  fs::remove(stage.path("project/.quillstead/memory/c.md"));
  (void)stage.call("rules_get");
  EXPECT_FALSE(isAtRest(second));
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
}

TEST_F(IndexAtRest, GoesWithItsStore) {
  stage.write("other/.quillstead/memory/o.md", "# O\n\nwalrus");
  stage.set("QUILLSTEAD_TRUST", stage.project() + ":" + stage.path("other"));
  const std::string other = R"({"prompt":"walrus","cwd":)" + jsonText(stage.path("other")) + "}";
  EXPECT_FALSE(stage.call("memory_get_relevant", other).isError);
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  ASSERT_EQ(stage.indexFiles().size(), 2U);
  const std::string old = cache() + "/index-1-0123456789abcdef.sqlite";
  const std::string oldButUsed = cache() + "/index-1-123456789abcdef0.sqlite";
  const std::string strange = cache() + "/keep-me.sqlite";
  for (const std::string& file : {old, oldButUsed, strange}) unit::writeFile(file, "x");
  for (const std::string& file : {old, strange}) {
    fs::last_write_time(file, fs::file_time_type::clock::now() - 24h * 40);
  }

  fs::remove_all(stage.path("other"));
  stage.writeProjectCard("b.md", "# B");
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_EQ(stage.indexFiles().size(), 5U);  // looked at less than a day ago

  const std::string note = cache() + "/pruned";
  fs::last_write_time(note, fs::file_time_type::clock::now() - 25h);
  stage.writeProjectCard("c.md", "# C");
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_THAT(stage.indexFiles(), ::testing::SizeIs(3));
  EXPECT_FALSE(fs::exists(old));
  EXPECT_TRUE(fs::exists(oldButUsed));
  EXPECT_TRUE(fs::exists(strange));
}

TEST_F(IndexAtRest, IsMadeAnewWhateverStandsInItsPlace) {
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  const std::string file = stage.indexFile();
  stage.write("precious", "SQLite format 3");
  const auto start = std::chrono::steady_clock::now();
  const auto expectSound = [&] {
    EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(file)));
    EXPECT_THAT(unit::contentsOf(file), ::testing::StartsWith("SQLite format 3"));
    EXPECT_EQ(unit::contentsOf(stage.path("precious")), "SQLite format 3");
  };
  for (const std::string& target : {stage.path("precious"), stage.path("nowhere"), file}) {
    fs::remove(file);
    fs::create_symlink(target, file);
    expectSound();
  }
  EXPECT_FALSE(fs::exists(stage.path("nowhere")));
  fs::remove(file);
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  expectSound();
  ASSERT_EQ(mkfifo((file + "-journal").c_str(), 0600), 0);
  expectSound();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST_F(IndexAtRest, IsMadeAnewWhenItsSchemaIsForged) {
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  const std::string file = stage.indexFile();
  const auto start = std::chrono::steady_clock::now();
  for (const char* const forgery :
       {// Views in place of tables, endless ones too.
        "DROP TABLE state; CREATE VIEW state AS SELECT 1 AS only, 1 AS fingerprint, "
        "0 AS isUnfinished, 0 AS needsMerging, "
        "1 AS namesStamp, 1 AS seenParts, 1 AS projectCards, 0 AS personalCards, "
        "'' AS roots",
        "DROP TABLE state; CREATE VIEW state AS WITH RECURSIVE endless (n) AS (SELECT 1 UNION ALL "
        "SELECT n + 1 FROM endless) SELECT max(n) AS fingerprint, "
        "0 AS isUnfinished, 0 AS needsMerging, "
        "1 AS namesStamp, 1 AS seenParts, 1 AS projectCards, 0 AS personalCards, "
        "'' AS roots, 1 AS only FROM endless",
        "DROP TABLE files; CREATE VIEW files AS WITH RECURSIVE endless (n) AS (SELECT 1 UNION ALL "
        "SELECT n + 1 FROM endless) SELECT n AS id, 0 AS store, 'a.md' AS name, 0 AS size, 0 AS "
        "modified, 1 AS isCard, 'Forged' AS title, 0 AS content FROM endless",
        "DROP TABLE cards; CREATE VIEW cards AS SELECT 'Forged' AS title, '' AS tags, '' AS body",
        "DROP TABLE cards; CREATE VIRTUAL TABLE cards USING fts5(title, tags)",
        "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = 'CREATE TABLE files(' "
        "WHERE name = 'files'",
        "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET rootpage = 1 WHERE name = 'files'",
        "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET rootpage = 99999 WHERE name = "
        "'state'",
        "PRAGMA journal_mode = WAL"}) {
    SCOPED_TRACE(forgery);
    forge(file, forgery);
    stage.writeProjectCard("b.md", std::string("# B\n\n") + forgery);
    EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
    EXPECT_THAT(stage.call("rules_get").text, ::testing::HasSubstr("Memory holds 2 cards"));
    EXPECT_THAT(stage.call("rules_get").text, ::testing::Not(::testing::HasSubstr("Forged")));
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
}

TEST_F(IndexAtRest, RunsNoTriggers) {
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  forge(stage.indexFile(),
        "CREATE TRIGGER bad AFTER INSERT ON files BEGIN UPDATE files SET title = 'Forged'; END;"
        "CREATE TEMP TRIGGER other AFTER INSERT ON files BEGIN SELECT 1; END");
  stage.writeProjectCard("b.md", "# B\n\notter");
  EXPECT_THAT(stage.recalled("otter"), ElementsAre("B"));
  EXPECT_THAT(stage.call("rules_get").text, ::testing::Not(::testing::HasSubstr("Forged")));
}

TEST(DatabaseLimits, EndAStatementWithoutEnd) {
  Database database = Database::inMemory();
  const auto start = std::chrono::steady_clock::now();
  Statement endless = database.prepare(
      "WITH RECURSIVE endless (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM endless) "
      "SELECT max(n) FROM endless");
  EXPECT_EQ(endless.step(), Statement::Step::failed);
  EXPECT_EQ(database.error(), DatabaseError::damaged);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 60s);
}

TEST(DatabaseLimits, FollowNoLink) {
  const MemoryStage stage;
  stage.write("real", "");
  fs::create_symlink("real", stage.path("link"));
  constexpr const char* statement = "CREATE TABLE one (a)";
  EXPECT_FALSE(Database::open(stage.path("link"), 0ms).run(statement));
  EXPECT_EQ(fs::file_size(stage.path("real")), 0U);
  EXPECT_TRUE(Database::open(stage.path("real"), 0ms).run(statement));
}

TEST(DatabaseLimits, RunNeitherTriggersNorViews) {
  Database database = Database::inMemory();
  ASSERT_TRUE(
      database.run("CREATE TABLE one (a); CREATE TABLE two (a); CREATE VIEW all_ AS SELECT "
                   "1; CREATE TRIGGER bad AFTER INSERT ON one BEGIN INSERT INTO two VALUES "
                   "(1); END; INSERT INTO one VALUES (1)"));
  EXPECT_EQ(database.prepare("SELECT * FROM one").step(), Statement::Step::row);
  EXPECT_EQ(database.prepare("SELECT * FROM two").step(), Statement::Step::done);
  EXPECT_EQ(database.prepare("SELECT * FROM all_").step(), Statement::Step::failed);
  EXPECT_EQ(database.error(), DatabaseError::damaged);
}

TEST(DatabaseLimits, LetNothingElseWriteTheTablesOfTheSearchOrTheSchema) {
  Database database = Database::inMemory();
  ASSERT_TRUE(database.run("CREATE VIRTUAL TABLE search USING fts5(text)"));
  EXPECT_TRUE(database.run("INSERT INTO search VALUES ('walrus')"));
  EXPECT_FALSE(database.run("DELETE FROM search_data"));
  EXPECT_FALSE(database.run("PRAGMA writable_schema = ON; DELETE FROM sqlite_schema"));
}

}  // namespace

}  // namespace quillstead::server::test
