#include "server/Index/CommonTerms.h"
#include "server/Index/IndexTables.h"

#include <gtest/gtest.h>

#include <string>

namespace quillstead::server {

namespace {

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
