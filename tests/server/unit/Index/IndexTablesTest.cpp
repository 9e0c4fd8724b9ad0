#include "server/Index/IndexTables.h"
#include "support/Text/Hash.h"

#include <gtest/gtest.h>

#include <string>

namespace quillstead::server {

namespace {

/// The tables as they are made, and the terms that a card in many scripts leaves in them.
std::string formatOf(Database& database) {
  std::string format;
  Statement schema = database.prepare(
      "SELECT sql FROM sqlite_schema WHERE name IN ('state', 'files', 'newest', 'cards', "
      "'seen') "
      "ORDER BY name");
  while (schema.step() == Statement::Step::row) format.append(schema.text(0)).append("\n");
  EXPECT_TRUE(database.run("CREATE VIRTUAL TABLE temp.terms USING fts5vocab(main, cards, col)"));
  Statement terms = database.prepare("SELECT term, col, cnt FROM temp.terms ORDER BY term, col");
  while (terms.step() == Statement::Step::row) {
    format.append(terms.text(0)).append(" ").append(terms.text(1)).append(" ");
    format.append(std::to_string(terms.integer(2))).append("\n");
  }
  return format;
}

// An index is used by any version of the server that gives its file the same name. So when this
// fails, raise `IndexTables::version`, and pin the new pair here.
TEST(IndexTables, HaveANewVersionWhenSchemaOrTokensChange) {
  constexpr int pinnedVersion = 8;
  constexpr std::uint64_t pinnedFormat = 4390848925024379197U;

  Database database = Database::inMemory();
  ASSERT_TRUE(IndexTables::create(database));
  ASSERT_TRUE(IndexTables::orderTitles(database));
  const Card card{.title = "Releasing the parseHTTPHeader of snake_case kebab-case",
                  .tags = {"deploy", "naïve"},
                  .body =
                      "Ölfilter 数据库备份 東京タワー ภาษาไทย 한국어 हिन्दी עברית "
                      "don't v1.2.3 C++ src/main.cpp ABC123 running ran"};
  IndexTables::CardCounts cards{};
  IndexTables::Writer writer(database, cards);
  ASSERT_TRUE(writer.add({.store = Store::Kind::project, .name = "a.md", .stamp = {}}, &card, 1));
  const std::string format = formatOf(database);
  ASSERT_NE(format.find("deploi"), std::string::npos) << format;
  EXPECT_EQ(IndexTables::version, pinnedVersion);
  EXPECT_EQ(Text::hashOf(format), pinnedFormat) << format;
}

TEST(IndexTables, KeepTheNumbersOfStores) {
  EXPECT_EQ(static_cast<int>(Store::Kind::project), 0);
  EXPECT_EQ(static_cast<int>(Store::Kind::personal), 1);
}

TEST(IndexTables, CountTheCardsOfEachStore) {
  Database database = Database::inMemory();
  ASSERT_TRUE(IndexTables::create(database));
  IndexTables::CardCounts cards{};
  IndexTables::Writer writer(database, cards);
  const Card card{.title = "T", .tags = {}, .body = ""};
  const auto file = [](Store::Kind store, const char* name) {
    return Survey::File{.store = store, .name = name, .stamp = {}};
  };
  ASSERT_TRUE(writer.add(file(Store::Kind::project, "a.md"), &card, 1));
  ASSERT_TRUE(writer.add(file(Store::Kind::personal, "a.md"), &card, 1));
  ASSERT_TRUE(writer.add(file(Store::Kind::personal, "b.md"), &card, 1));
  ASSERT_TRUE(writer.add(file(Store::Kind::personal, "no-card.md"), nullptr, 1));
  EXPECT_EQ(cards, (IndexTables::CardCounts{1, 2}));
  EXPECT_EQ(IndexTables::countedCards(database), cards);
  const auto rows = IndexTables::rows(database);
  for (const IndexTables::Row& row : *rows) {
    ASSERT_TRUE(writer.remove(row.id));
    EXPECT_EQ(IndexTables::countedCards(database), cards) << row.name;
  }
  EXPECT_EQ(cards, IndexTables::CardCounts{});
}

TEST(IndexTables, TouchARowOfTheSameContentOnly) {
  Database database = Database::inMemory();
  ASSERT_TRUE(IndexTables::create(database));
  IndexTables::CardCounts cards{};
  IndexTables::Writer writer(database, cards);
  const Card card{.title = "T", .tags = {}, .body = ""};
  ASSERT_TRUE(writer.add({.store = Store::Kind::project, .name = "a.md", .stamp = {}}, &card, 7));
  const std::int64_t id = IndexTables::rows(database)->front().id;
  const OS::FileStamp later{.size = 5, .modified = 6};
  EXPECT_FALSE(writer.touch(id, later, 8));
  EXPECT_NE(IndexTables::rows(database)->front().stamp, later);
  EXPECT_TRUE(writer.touch(id, later, 7));
  EXPECT_EQ(IndexTables::rows(database)->front().stamp, later);
}

class CommonTermsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(IndexTables::create(database));
    ASSERT_TRUE(IndexTables::setState(database, state, {}));
  }

  CommonTerms known() {
    CommonTerms common;
    EXPECT_TRUE(IndexTables::cardCounts(database, &common));
    return common;
  }

  Database database = Database::inMemory();
  IndexTables::State state{.fingerprint = 7, .namesStamp = {}};
};

TEST_F(CommonTermsTest, AreKeptUntilTheCardsChange) {
  CommonTerms common = known();
  EXPECT_FALSE(common.contain("\"heron\""));
  common.add("\"heron\"");
  common.keep(database);
  common = known();
  EXPECT_TRUE(common.contain("\"heron\""));
  EXPECT_FALSE(common.contain("\"her\""));
  EXPECT_FALSE(common.contain(""));
  common.add("\"gull\"*");
  common.keep(database);
  EXPECT_TRUE(known().contain("\"heron\""));
  EXPECT_TRUE(known().contain("\"gull\"*"));
  EXPECT_FALSE(known().contain("\"gull\""));

  state.fingerprint = 8;
  ASSERT_TRUE(IndexTables::setState(database, state, {}));
  EXPECT_FALSE(known().contain("\"heron\""));
}

TEST_F(CommonTermsTest, OfOtherCardsAreNotKept) {
  CommonTerms common = known();
  common.add("\"heron\"");
  state.fingerprint = 8;
  ASSERT_TRUE(IndexTables::setState(database, state, {}));
  common.keep(database);
  EXPECT_FALSE(known().contain("\"heron\""));
}

TEST_F(CommonTermsTest, AreWrittenOnlyWhenOneIsNew) {
  CommonTerms common = known();
  common.add("\"heron\"");
  common.keep(database);
  const std::int64_t before = database.totalChanges();
  known().keep(database);
  EXPECT_EQ(database.totalChanges(), before);
}

TEST_F(CommonTermsTest, StaySmall) {
  CommonTerms common = known();
  for (int number = 0; number < 1'000; ++number) common.add("\"" + std::to_string(number) + "\"");
  common.keep(database);
  Statement read = database.prepare("SELECT length(commonTerms) FROM state");
  ASSERT_EQ(read.step(), Statement::Step::row);
  EXPECT_LE(read.integer(0), 4'096);
  EXPECT_TRUE(known().contain("\"100\""));
  EXPECT_FALSE(known().contain("\"999\""));
}

}  // namespace

}  // namespace quillstead::server
