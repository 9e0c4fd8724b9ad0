#include "server/Index/IndexTables.h"
#include "server/Index/IndexUpdate.h"
#include "server/Index/SeenFiles.h"
#include "server/Index/Survey.h"
#include "support/OS/Directory.h"
#include "unit/helpers/Files.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace quillstead::server {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Clock = OS::MonotonicClock;

class IndexUpdateTest : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directories(place / "store/memory"); }

  void put(const std::string& name, const std::string& text) const {
    unit::writeFile(place / ("store/memory/" + name), text);
    const auto hourAgo = fs::file_time_type::clock::now() - 1h;
    fs::last_write_time(place / ("store/memory/" + name), hourAgo);
  }

  /// Writes `count` files of `bytes` each, full of words that differ.
  void putLong(int count, std::size_t bytes) const {
    std::string text;
    while (text.size() < bytes) text += "word" + std::to_string(text.size()) + ' ';
    for (int number = 0; number < count; ++number) put(std::to_string(number) + ".md", text);
  }

  [[nodiscard]] Survey survey() const {
    return Survey::opened(
        {.personal = std::nullopt,
         .project = Store{.kind = Store::Kind::project, .root = place / "store"}});
  }

  [[nodiscard]] Database openIndex() const { return Database::open(place / "index", 10s); }

  /// True unless the update failed.
  static bool update(Database& database, Survey& seen, Clock::time_point deadline,
                     const IndexUpdate::ReadCard& read = &StoreFiles::readCard) {
    const auto first = [] { return std::uint64_t{0}; };
    return IndexUpdate::run(database, seen, deadline, first, read) != IndexUpdate::Outcome::failed;
  }

  /// How many files an index knows.
  static std::size_t known(Database& database) {
    const auto rows = IndexTables::rows(database);
    return rows ? rows->size() : 0;
  }

  /// How many files another connection knows before each file that an update reads. It waits for
  /// locks for `patience`.
  [[nodiscard]] std::vector<std::size_t> committedDuringUpdate(
      Database& database, std::chrono::milliseconds patience) const {
    Database other = Database::open(place / "index", patience);
    Survey seen = survey();
    std::vector<std::size_t> committed;
    EXPECT_TRUE(update(database, seen, Clock::now() + 60s,
                       [&](const OS::Descriptor& cards, Store::Kind kind, const std::string& name) {
                         committed.push_back(known(other));
                         return StoreFiles::readCard(cards, kind, name);
                       }));
    return committed;
  }

  const unit::TemporaryDirectory place;
};

TEST_F(IndexUpdateTest, LocksOthersOutOnlyWhileItReads) {
  Database database = openIndex();
  Database other = Database::open(place / "index", 0ms);
  const auto mayWrite = [&other] {
    const bool may = other.run("BEGIN EXCLUSIVE");
    other.rollBack();
    return may;
  };
  const auto update = [&] {
    Survey seen = survey();
    const auto first = [] { return std::uint64_t{0}; };
    return IndexUpdate::run(database, seen, Clock::now() + 10s, first);
  };
  put("a.md", "# A");
  ASSERT_TRUE(database.beginReading());
  EXPECT_EQ(update(), IndexUpdate::Outcome::written);
  EXPECT_TRUE(mayWrite());
  std::this_thread::sleep_for(100ms);  // until the directory's time shows that nothing changed
  ASSERT_EQ(update(), IndexUpdate::Outcome::written);

  ASSERT_TRUE(database.beginReading());
  EXPECT_EQ(update(), IndexUpdate::Outcome::current);
  EXPECT_FALSE(mayWrite()) << "a query must see what the update found to be current";
  EXPECT_TRUE(database.beginReading());
  EXPECT_FALSE(mayWrite());
  database.rollBack();
  EXPECT_TRUE(mayWrite());
}

TEST_F(IndexUpdateTest, KeepsWhatIsDoneWhenSlowFilesTakeAllTheTime) {
  constexpr std::size_t files = 200;
  for (std::size_t number = 0; number < files; ++number) {
    put(std::to_string(number) + ".md", "# T");
  }
  std::size_t readings = 0;
  const auto slowly = [&](const OS::Descriptor& cards, Store::Kind kind, const std::string& name) {
    ++readings;
    std::this_thread::sleep_for(2ms);
    return StoreFiles::readCard(cards, kind, name);
  };
  std::size_t before = 0;
  int calls = 0;
  while (before < files) {
    Database database = openIndex();
    Survey seen = survey();
    const auto start = Clock::now();
    ASSERT_TRUE(update(database, seen, start + 50ms, slowly));
    EXPECT_LT(Clock::now() - start, 1s);
    const std::size_t now = known(database);
    ASSERT_GT(now, before);
    before = now;
    ++calls;
  }
  EXPECT_GT(calls, 4);  // 200 files take 400 ms at least
  EXPECT_EQ(readings, files);
}

TEST_F(IndexUpdateTest, MakesAStepWithOneFileWhenThereIsNoTimeAtAll) {
  for (const char* const name : {"a.md", "b.md", "c.md"}) put(name, "# T");
  for (std::size_t call = 1; call <= 3; ++call) {
    Database database = openIndex();
    Survey seen = survey();
    seen.look(Survey::Depth::stamps, Clock::now() + 10s);
    ASSERT_TRUE(seen.isComplete());
    ASSERT_TRUE(update(database, seen, Clock::now() + 1ms,
                       [](const OS::Descriptor& cards, Store::Kind kind, const std::string& name) {
                         std::this_thread::sleep_for(5ms);
                         return StoreFiles::readCard(cards, kind, name);
                       }));
    EXPECT_EQ(known(database), call);
  }
}

TEST_F(IndexUpdateTest, ForgetsNothingForASurveyThatEndedEarly) {
  for (const char* const name : {"a.md", "b.md", "c.md"}) put(name, "# T");
  Database database = openIndex();
  Survey seen = survey();
  ASSERT_TRUE(update(database, seen, Clock::now() + 10s));
  fs::remove(place / "store/memory/a.md");
  ASSERT_TRUE(update(database, seen, Clock::now() - 1s));
  EXPECT_FALSE(seen.isComplete());
  EXPECT_EQ(known(database), 3U);
  ASSERT_TRUE(update(database, seen, Clock::now() + 10s));
  EXPECT_EQ(known(database), 2U);
}

TEST_F(IndexUpdateTest, CommitsAfterSomeMegabytes) {
  putLong(12, 1'000'000);
  Database database = openIndex();
  const std::vector<std::size_t> committed = committedDuringUpdate(database, 100ms);
  EXPECT_EQ(known(database), 12U);
  ASSERT_EQ(committed.size(), 12U);
  EXPECT_GE(committed.back(), 5U);
}

TEST_F(IndexUpdateTest, LetsOthersReadUntilItCommits) {
  putLong(100, 50'000);
  Database database = openIndex();
  ASSERT_TRUE(database.run("PRAGMA cache_size = 10"));  // pages: a step has no room in it
  const std::vector<std::size_t> committed = committedDuringUpdate(database, 0ms);
  ASSERT_EQ(committed.size(), 100U);
  EXPECT_GT(committed.back(), 0U);
  EXPECT_TRUE(std::is_sorted(committed.begin(), committed.end())) << "what was there was not read";
}

TEST_F(IndexUpdateTest, FollowsWhatAnotherServerIndexedBetweenItsSteps) {
  put("a.md", "# A");
  put("b.md", "# B");
  Database database = openIndex();
  Survey seen = survey();
  seen.look(Survey::Depth::stamps, Clock::now() + 10s);
  // Between the look and the lock another server sees and indexes one more.
  put("c.md", "# C");
  Database other = openIndex();
  Survey fresh = survey();
  std::size_t readings = 0;
  ASSERT_TRUE(update(other, fresh, Clock::now() + 10s));
  ASSERT_TRUE(update(database, seen, Clock::now() + 10s,
                     [&](const OS::Descriptor& cards, Store::Kind kind, const std::string& name) {
                       ++readings;
                       return StoreFiles::readCard(cards, kind, name);
                     }));
  EXPECT_EQ(readings, 0U);
  EXPECT_EQ(known(database), 3U);
}

TEST_F(IndexUpdateTest, ReadsAFileAgainButWritesNoWordsWhenItsContentStayed) {
  put("a.md", "# A\n\nwalrus");
  Database database = openIndex();
  Survey seen = survey();
  ASSERT_TRUE(update(database, seen, Clock::now() + 10s));
  const std::int64_t row = IndexTables::rows(database)->front().id;
  fs::last_write_time(place / "store/memory/a.md", fs::file_time_type::clock::now() - 2h);
  put("b.md", "# B");
  ASSERT_TRUE(update(database, seen, Clock::now() + 10s));
  const auto rows = *IndexTables::rows(database);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows.front().id, row);
  EXPECT_EQ(rows.front().stamp,
            StoreFiles::cardStamp(seen.cards(Store::Kind::project), Store::Kind::project, "a.md"));
}

TEST_F(IndexUpdateTest, SeesAnEditInPlaceAtOnceInASmallStore) {
  for (int number = 0; number < 50; ++number) put(std::to_string(number) + ".md", "# T");
  std::this_thread::sleep_for(100ms);  // until the directory's time is settled
  const auto outcome = [this] {
    Database database = openIndex();
    Survey seen = survey();
    return IndexUpdate::run(database, seen, Clock::now() + 10s, [] { return std::uint64_t{0}; });
  };
  ASSERT_EQ(outcome(), IndexUpdate::Outcome::written);
  outcome();  // it notes that no name has changed since
  ASSERT_EQ(outcome(), IndexUpdate::Outcome::current);
  for (const std::string name : {"0.md", "25.md", "49.md"}) {
    put(name, "# Another");
    EXPECT_EQ(outcome(), IndexUpdate::Outcome::written) << name;
    while (outcome() == IndexUpdate::Outcome::written) {
    }
  }
}

TEST_F(IndexUpdateTest, SeesThatAFileMayBeReadAgain) {
  put("a.md", "# A");
  put("b.md", "# B");
  fs::permissions(place / "store/memory/a.md", fs::perms::others_write, fs::perm_options::add);
  std::this_thread::sleep_for(100ms);
  Database database = openIndex();
  for (int call = 0; call < 3; ++call) {
    Survey seen = survey();
    ASSERT_TRUE(update(database, seen, Clock::now() + 10s));
    EXPECT_EQ(known(database), 1U);
  }
  fs::permissions(place / "store/memory/a.md", fs::perms::others_write, fs::perm_options::remove);
  Survey seen = survey();
  ASSERT_TRUE(update(database, seen, Clock::now() + 10s));
  EXPECT_EQ(known(database), 2U);
}

/// What a query finds in its first row; -1 when it finds none.
std::int64_t numberIn(Database& database, const char* query) {
  Statement read = database.prepare(query);
  return read.step() == Statement::Step::row ? read.integer(0) : -1;
}

constexpr const char* automerge = "SELECT v FROM cards_config WHERE k = 'automerge'";
constexpr const char* ordersOfTitles =
    "SELECT count(*) FROM sqlite_schema WHERE type = 'index' AND name = 'newest'";

TEST_F(IndexUpdateTest, MergesTheWordsOfManyCardsAtTheEndOnly) {
  for (int number = 0; number < 300; ++number) {
    put(std::to_string(number) + ".md", "# T\n\nwalrus" + std::to_string(number));
  }
  Database database = openIndex();
  Database other = openIndex();
  std::vector<std::int64_t> during;
  const auto slowly = [&](const OS::Descriptor& cards, Store::Kind kind, const std::string& name) {
    std::this_thread::sleep_for(2ms);  // so that it takes several steps
    if (known(other) > 0) during.push_back(numberIn(other, automerge));
    return StoreFiles::readCard(cards, kind, name);
  };
  Survey seen = survey();
  ASSERT_TRUE(update(database, seen, Clock::now() + 60s, slowly));
  ASSERT_FALSE(during.empty());
  EXPECT_TRUE(std::all_of(during.begin(), during.end(), [](auto value) { return value == 0; }));
  EXPECT_EQ(numberIn(database, automerge), 4);
  // A part has a first page, and each of its pages a row.
  EXPECT_EQ(numberIn(database, "SELECT count(DISTINCT segid) FROM cards_idx"), 1);
}

TEST_F(IndexUpdateTest, OrdersTitlesWhenAllRowsAreThere) {
  for (const std::size_t files : {3U, 300U}) {
    for (std::size_t number = 0; number < files; ++number) {
      put(std::to_string(files) + "-" + std::to_string(number) + ".md", "# T");
    }
    Database database = Database::inMemory();
    Survey seen = survey();
    ASSERT_TRUE(update(database, seen, Clock::now()));
    EXPECT_EQ(known(database), 1U);
    EXPECT_EQ(numberIn(database, ordersOfTitles), 0) << files;
    ASSERT_TRUE(update(database, seen, Clock::now() + 60s));
    EXPECT_EQ(numberIn(database, ordersOfTitles), 1) << files;
  }
}

/// The statements that a database runs from now on.
class RunStatements {
 public:
  /// A statement with `slow` in it takes as long as a step of an update may.
  RunStatements(Database& database, std::string_view slow) : slow_(slow) {
    sqlite3_trace_v2(database.handle(), SQLITE_TRACE_STMT, &note, this);
  }

  /// How many had this in them.
  [[nodiscard]] std::ptrdiff_t with(std::string_view words) const {
    return std::count_if(all_.begin(), all_.end(), [words](const std::string& statement) {
      return statement.find(words) != std::string::npos;
    });
  }

 private:
  static int note(unsigned /*event*/, void* self, void* /*statement*/, void* text) {
    auto& noted = *static_cast<RunStatements*>(self);
    noted.all_.emplace_back(static_cast<const char*>(text));
    if (noted.all_.back().find(noted.slow_) != std::string::npos)
      std::this_thread::sleep_for(100ms);
    return 0;
  }

  std::string slow_;
  std::vector<std::string> all_;
};

TEST_F(IndexUpdateTest, SetsTheMergingAndOrdersTitlesOnceInHoweverManySteps) {
  putLong(300, 2'000);
  Database database = openIndex();
  RunStatements statements(database, "'merge'");
  const auto slowly = [](const OS::Descriptor& cards, Store::Kind kind, const std::string& name) {
    std::this_thread::sleep_for(2ms);
    return StoreFiles::readCard(cards, kind, name);
  };
  Survey seen = survey();
  ASSERT_TRUE(update(database, seen, Clock::now() + 60s, slowly));
  const std::ptrdiff_t merges = statements.with("'merge'");
  EXPECT_GE(merges, 2);
  EXPECT_GE(statements.with("COMMIT"), 5 + merges) << "changes and merges take several steps";
  EXPECT_EQ(statements.with("'automerge', 0"), 1);
  EXPECT_EQ(statements.with("'automerge', 4"), 1);
  EXPECT_EQ(statements.with("newest ON files"), 1);
}

/// A store large enough to be looked at in parts.
class LargeIndexUpdate : public IndexUpdateTest {
 protected:
  static constexpr std::size_t files = SeenFiles::fewFiles + 500;

  void SetUp() override {
    IndexUpdateTest::SetUp();
    for (std::size_t number = 0; number < files; ++number) {
      put(std::to_string(number) + ".md", "# T");
    }
    std::this_thread::sleep_for(100ms);  // until the directory's time is settled
    ASSERT_EQ(update(), IndexUpdate::Outcome::written);
    ASSERT_EQ(update(), IndexUpdate::Outcome::written);  // it notes that no name has changed since
    if (!survey().namesStamp()) GTEST_SKIP() << "this file system may be changed from elsewhere";
    ASSERT_EQ(update(), IndexUpdate::Outcome::current);
  }

  IndexUpdate::Outcome update() {
    Database database = openIndex();
    Survey seen = survey();
    return IndexUpdate::run(database, seen, Clock::now() + 60s, [this] { return turn++; });
  }

  [[nodiscard]] std::string firstName() const {
    Survey seen = survey();
    seen.look(Survey::Depth::names, Clock::time_point::max());
    return seen.files().front().name;
  }

  std::uint64_t turn = 0;
};

TEST_F(LargeIndexUpdate, SeesAnEditInPlaceWhenItsPartHasItsTurn) {
  constexpr int parts = 5;
  for (const std::string name : {"0.md", "2.md", "2499.md"}) {
    unit::writeFile(place / ("store/memory/" + name), "# Edited " + name);
    int written = 0;
    for (int call = 0; call < parts; ++call) {
      if (update() == IndexUpdate::Outcome::written) ++written;
    }
    EXPECT_GE(written, 1) << name;
    std::this_thread::sleep_for(100ms);
    while (update() == IndexUpdate::Outcome::written) {
    }
  }
  Database database = openIndex();
  Statement read = database.prepare("SELECT count(*) FROM files WHERE title LIKE 'Edited %'");
  ASSERT_EQ(read.step(), Statement::Step::row);
  EXPECT_EQ(read.integer(0), 3);
}

TEST_F(LargeIndexUpdate, SeesEveryChangeOfANameAtOnce) {
  const auto memory = [this](const std::string& name) { return place / ("store/memory/" + name); };
  unit::writeFile(memory("new.md"), "# T");
  EXPECT_EQ(update(), IndexUpdate::Outcome::written);
  fs::rename(memory("new.md"), memory("1.md"));
  EXPECT_EQ(update(), IndexUpdate::Outcome::written);
  fs::rename(memory("1.md"), memory("renamed.md"));
  EXPECT_EQ(update(), IndexUpdate::Outcome::written);
  fs::remove(memory("2.md"));
  EXPECT_EQ(update(), IndexUpdate::Outcome::written);
  Database database = openIndex();
  EXPECT_EQ(known(database), files - 1);
}

TEST_F(LargeIndexUpdate, SeesThatANameIsGoneThoughSomebodySetTheDirectorysTimeBack) {
  const std::string memory = place / "store/memory";
  const auto time = fs::last_write_time(memory);
  fs::remove(memory + "/" + firstName());
  fs::last_write_time(memory, time);
  std::this_thread::sleep_for(100ms);  // until the directory's time is settled
  turn = 1;                            // not the turn of the first name's part
  EXPECT_EQ(update(), IndexUpdate::Outcome::written);
  Database database = openIndex();
  EXPECT_EQ(known(database), files - 1);
}

TEST_F(LargeIndexUpdate, LooksAtOnePartOnly) {
  constexpr int parts = 5;
  const std::string name = firstName();
  unit::writeFile(place / ("store/memory/" + name), "# Edited");
  turn = 1;  // the first file is of the first part
  for (int call = 1; call < parts; ++call) {
    EXPECT_EQ(update(), IndexUpdate::Outcome::current) << call;
  }
  EXPECT_EQ(update(), IndexUpdate::Outcome::written);
}

}  // namespace

}  // namespace quillstead::server
