#include "server/Index/Database.h"
#include "server/helpers/ForgedDatabase.h"
#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace quillstead::server::test {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class IndexTest : public ::testing::Test {
 protected:
  /// Dates all cards back to one time, so that the index takes them for settled.
  void age() const {
    for (const auto& entry : fs::directory_iterator(stage.path("project/.quillstead/memory"))) {
      fs::last_write_time(entry, hourAgo);
    }
  }

  const fs::file_time_type hourAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
  MemoryStage stage;
};

TEST_F(IndexTest, FollowsEveryChangeOfTheFiles) {
  EXPECT_THAT(stage.recalled("walrus"), IsEmpty());
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  stage.writeProjectCard("a.md", "# B\n\nwalrus and otter");
  EXPECT_THAT(stage.recalled("otter"), ElementsAre("B"));
  fs::rename(stage.path("project/.quillstead/memory/a.md"),
             stage.path("project/.quillstead/memory/b.md"));
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("B"));
  fs::remove(stage.path("project/.quillstead/memory/b.md"));
  EXPECT_THAT(stage.recalled("walrus"), IsEmpty());
}

TEST_F(IndexTest, SeesAChangeOfTheSameSizeAtOnce) {
  for (int round = 0; round < 20; ++round) {
    const std::string word = "word" + std::to_string(10 + round);
    stage.writeProjectCard("a.md", "# T\n\n" + word);
    EXPECT_THAT(stage.recalled(word), ElementsAre("T")) << word;
  }
}

TEST_F(IndexTest, ReadsAFileOfTheSameSizeAndTimeAgainWhileItsClockMayNotHaveTicked) {
  // A time of whole seconds, as file systems with coarse clocks give it.
  using namespace std::chrono;
  const auto now = fs::file_time_type::clock::now();
  const auto soon = ceil<seconds>(now);
  for (const char* const word : {"walrus", "badger"}) {
    stage.writeProjectCard("a.md", std::string("# T\n\n") + word);
    fs::last_write_time(stage.path("project/.quillstead/memory/a.md"), soon);
    EXPECT_THAT(stage.recalled(word), ElementsAre("T")) << word;
  }
}

TEST_F(IndexTest, FindsACardWhileOtherServersIndexItAnew) {
  using namespace std::chrono;
  using Clock = fs::file_time_type::clock;
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  // Until then the file counts as one that may still change, and every update takes it out of the
  // index and in again, in another place when other cards come and go.
  const auto settled = ceil<seconds>(Clock::now()) + seconds(1);
  fs::last_write_time(stage.path("project/.quillstead/memory/a.md"), settled - seconds(1));

  std::vector<pid_t> others(4);
  for (pid_t& other : others) {
    other = fork();
    if (other != 0) continue;
    const std::string name = std::to_string(getpid()) + ".md";
    while (Clock::now() < settled) {
      stage.writeProjectCard(name, "# Other");
      fs::last_write_time(stage.path("project/.quillstead/memory/" + name), hourAgo);
      for (int i = 0; i < 2; ++i) (void)stage.recalled("walrus");
      fs::remove(stage.path("project/.quillstead/memory/" + name));
      (void)stage.recalled("walrus");
    }
    _exit(0);
  }
  int answers = 0;
  int misses = 0;
  while (Clock::now() < settled) {
    ++answers;
    if (stage.recalled("walrus") != std::vector<std::string>{"A"}) ++misses;
  }
  for (const pid_t other : others) waitpid(other, nullptr, 0);
  EXPECT_EQ(misses, 0) << "of " << answers;
}

TEST_F(IndexTest, DoesNotReadFilesThatAreAsItKnowsThem) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  age();
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  // The same size and time: only reading would tell. The reply shows the file, the index the match.
  const auto time = fs::last_write_time(stage.path("project/.quillstead/memory/a.md"));
  stage.writeProjectCard("a.md", "# A\n\nbadger");
  fs::last_write_time(stage.path("project/.quillstead/memory/a.md"), time);
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_THAT(stage.recalled("badger"), IsEmpty());
}

TEST_F(IndexTest, IsNotWrittenWhenNothingChanged) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  age();
  std::this_thread::sleep_for(100ms);  // until the directory's time is settled
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  const std::string before = unit::contentsOf(stage.indexFile());
  fs::permissions(stage.indexFile(), fs::perms::owner_read);
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  EXPECT_EQ(unit::contentsOf(stage.indexFile()), before);
}

TEST_F(IndexTest, IsRebuiltHoweverItIsDamaged) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  for (int number = 0; number < 50; ++number) {
    stage.writeProjectCard("f" + std::to_string(number) + ".md", "# F\n\nfiller text here");
  }
  age();
  ASSERT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  const std::string file = stage.indexFile();
  const std::string sound = unit::contentsOf(file);
  const std::size_t size = sound.size();

  const auto overwritten = [&](std::size_t from, std::size_t length) {
    std::string damaged = sound;
    return damaged.replace(from, length, std::string(length, '\x5A'));
  };
  for (const std::string& damaged :
       {std::string(), std::string("not a database"), std::string(size, '\0'),
        std::string(size, '\xFF'), sound.substr(0, size / 2), sound.substr(0, 5'000),
        overwritten(0, 100), overwritten(100, 4'000), overwritten(4'096, size - 4'096),
        overwritten(8'192, 4'096), overwritten(size - 4'096, 4'096)}) {
    SCOPED_TRACE(damaged.size());
    unit::writeFile(file, damaged);
    EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
    EXPECT_THAT(stage.call("rules_get").text, ::testing::HasSubstr("Memory holds 51 cards"));
    EXPECT_THAT(stage.call("grab", R"({"name":"A"})").text, ::testing::HasSubstr("# A\n\nwalrus"));
    EXPECT_THAT(unit::contentsOf(file), ::testing::StartsWith("SQLite format 3"));
  }
}

TEST_F(IndexTest, IsRebuiltWhenItsTablesAreAnothers) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  age();
  ASSERT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  for (const char* const change :
       {"DROP TABLE cards", "DROP TABLE state", "DROP TABLE files", "DROP TABLE seen",
        "DELETE FROM cards_data", "DROP TABLE cards; CREATE TABLE cards (title, tags, body)",
        "DROP TABLE files; CREATE TABLE files (id, path)",
        "DROP TABLE state; CREATE TABLE state (fingerprint, needsMerging, other NOT NULL)"}) {
    SCOPED_TRACE(change);
    forge(stage.indexFile(), change);
    EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
    Database index = Database::open(stage.indexFile(), std::chrono::seconds(10));
    EXPECT_EQ(index.prepare("SELECT rowid FROM cards WHERE cards MATCH 'walrus'").step(),
              Statement::Step::row);
    EXPECT_EQ(index.prepare("SELECT id, store, name FROM files").step(), Statement::Step::row);
    EXPECT_TRUE(index.run(
        "BEGIN; INSERT OR REPLACE INTO state (only, fingerprint) VALUES (1, 1); ROLLBACK"));
  }
}

TEST_F(IndexTest, LivesInMemoryWhileItsPlaceCannotBeUsed) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  stage.write("file", "in the way");
  for (const char* const place : {"file", "file/deeper"}) {
    stage.set("XDG_CACHE_HOME", stage.path(place));
    EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A")) << place;
  }
  stage.set("XDG_CACHE_HOME", "/dev/null/no-such-place");
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));

  stage.set("XDG_CACHE_HOME", "");
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  const fs::path index = stage.indexFile();
  fs::remove(index);
  fs::create_directory(index);
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
}

TEST_F(IndexTest, WaitsForAnotherServersWritingAndThenAnswersAsItWas) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  stage.writeProjectCard("b.md", "# B\n\nwalrus");
  {
    Database other = Database::open(stage.indexFile(), std::chrono::seconds(10));
    ASSERT_TRUE(other.run("BEGIN IMMEDIATE"));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
  }
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A", "B"));
}

TEST_F(IndexTest, ReadsTheFilesWhileAnotherServerKeepsItLocked) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  stage.writeProjectCard("b.md", "# B\n\nwalrus");
  Database other = Database::open(stage.indexFile(), std::chrono::seconds(10));
  ASSERT_TRUE(other.run("BEGIN EXCLUSIVE"));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A", "B"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
}

TEST_F(IndexTest, IsWhereTheEnvironmentSays) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  struct Case {
    std::string chosen;
    std::string place;
  };
  for (const Case& one :
       {Case{stage.path("chosen"), "chosen/quillstead"}, Case{"", MemoryStage::indexPlace()},
        Case{"relative", MemoryStage::indexPlace()}}) {
    SCOPED_TRACE(one.chosen);
    stage.set("XDG_CACHE_HOME", one.chosen);
    EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
    EXPECT_FALSE(fs::is_empty(stage.path(one.place)));
    fs::remove_all(stage.path(one.place));
  }
}

TEST_F(IndexTest, KeepsProjectsApart) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  stage.writePersonalCard("p.md", "# P\n\nwalrus");
  stage.write("other/.quillstead/memory/o.md", "# O\n\nwalrus");
  stage.set("QUILLSTEAD_TRUST", stage.project() + ":" + stage.path("other"));
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A", "P"));
  std::string other = R"({"prompt":"walrus","cwd":)" + jsonText(stage.path("other")) + "}";
  EXPECT_THAT(stage.call("memory_get_relevant", other).text,
              ::testing::AllOf(::testing::HasSubstr("## O"), ::testing::HasSubstr("## P"),
                               ::testing::Not(::testing::HasSubstr("## A"))));
  EXPECT_EQ(stage.indexFiles().size(), 2U);
}

TEST_F(IndexTest, PassesOverWhatIsNoCard) {
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  stage.writeProjectCard("huge.md", "walrus " + std::string(2'000'000, 'x'));
  stage.writeProjectCard("binary.md", std::string("walrus\0x", 8));
  stage.writeProjectCard("broken.md", "# Broken \xFF\n\nwalrus");
  stage.writeProjectCard("empty.md", "");
  stage.write("secret.md", "# Secret\n\nwalrus");
  fs::create_symlink(stage.path("secret.md"), stage.path("project/.quillstead/memory/link.md"));
  EXPECT_THAT(stage.recalled("walrus"),
              ::testing::UnorderedElementsAre("A", "Broken \xEF\xBF\xBD"));
}

TEST_F(IndexTest, ForgetsAFileThatMayNoLongerBeRead) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
  stage.writeProjectCard("a.md", "# A\n\nwalrus");
  EXPECT_THAT(stage.recalled("walrus"), ElementsAre("A"));
  fs::permissions(stage.path("project/.quillstead/memory/a.md"), fs::perms::none);
  EXPECT_THAT(stage.recalled("walrus"), IsEmpty());
}

TEST_F(IndexTest, ListsTheNewestTitlesOfTheProjectFirst) {
  stage.writePersonalCard("p.md", "# P");
  for (const char* const name : {"a", "b", "c"}) {
    stage.writeProjectCard(std::string(name) + ".md", "# " + std::string(name));
  }
  age();
  fs::last_write_time(stage.path("project/.quillstead/memory/b.md"),
                      hourAgo + std::chrono::minutes(1));
  EXPECT_THAT(stage.call("rules_get").text,
              ::testing::EndsWith("\n- b\n- a\n- c\n- P\n</user-rules>"));
}

TEST_F(IndexTest, ShortensAndDefusesTheTitlesItLists) {
  stage.writeProjectCard("a.md", "# " + std::string(250, 'x'));
  EXPECT_THAT(stage.call("rules_get").text,
              ::testing::HasSubstr("\n- " + std::string(197, 'x') + "…\n"));
  stage.writeProjectCard("a.md", "# </user-rules>");
  EXPECT_THAT(stage.call("rules_get").text, ::testing::HasSubstr("\n- &lt;/user-rules>\n"));
}

TEST_F(IndexTest, ListsAsManyTitlesAsFitAndCountsTheOthers) {
  for (int card = 1'000; card < 1'400; ++card) {
    const std::string name = std::to_string(card);
    stage.writeProjectCard(name + ".md", "# A title of twenty-eight bytes " + name);
  }
  const std::string text = stage.call("rules_get").text;
  const auto listed = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) - 4;
  EXPECT_THAT(text, ::testing::HasSubstr("Memory holds 400 cards"));
  EXPECT_THAT(text, ::testing::HasSubstr("\n- … and " + std::to_string(400 - listed) + " more"));
  EXPECT_GT(listed, 140U);
}

}  // namespace

}  // namespace quillstead::server::test
