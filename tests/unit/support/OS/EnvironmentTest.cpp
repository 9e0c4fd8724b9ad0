#include "support/OS/Environment.h"
#include "unit/helpers/Process.h"

#include <gtest/gtest.h>

namespace quillstead::OS {
namespace {

TEST(Environment, GivesTheValueOfExactlyThatName) {
  const unit::EnvironmentOf entries{"A=1", "AB=2", "LONG=a=b=c", "EMPTY="};
  const Environment environment = entries;
  EXPECT_EQ(environment.value("A"), "1");
  EXPECT_EQ(environment.value("AB"), "2");
  EXPECT_EQ(environment.value("LONG"), "a=b=c");
  EXPECT_EQ(environment.value("a"), std::nullopt);
  EXPECT_EQ(environment.value("ABC"), std::nullopt);
  EXPECT_EQ(environment.value("LON"), std::nullopt);
}

TEST(Environment, TellsAnEmptyValueFromNone) {
  const unit::EnvironmentOf entries{"EMPTY="};
  EXPECT_EQ(Environment(entries).value("EMPTY"), "");
  EXPECT_EQ(Environment(entries).value("OTHER"), std::nullopt);
}

TEST(Environment, TakesTheFirstOfTwoEntriesWithOneName) {
  const unit::EnvironmentOf entries{"A=first", "A=second"};
  EXPECT_EQ(Environment(entries).value("A"), "first");
}

TEST(Environment, PassesOverAnEntryWithoutAnEqualsSign) {
  const unit::EnvironmentOf entries{"A", "AB", "A=1"};
  EXPECT_EQ(Environment(entries).value("A"), "1");
}

TEST(Environment, IsThatOfTheProcessWhenAskedFor) {
  const unit::ScopedVariable variable("QUILLSTEAD_TEST_MARK", "a mark");
  EXPECT_EQ(Environment::ofProcess().value("QUILLSTEAD_TEST_MARK"), "a mark");
}

TEST(Environment, GivesItsEntriesAsTheyCame) {
  const unit::EnvironmentOf entries{"A=1", "B=2"};
  const Environment environment = entries;
  EXPECT_STREQ(environment.entries()[0], "A=1");
  EXPECT_STREQ(environment.entries()[1], "B=2");
  EXPECT_EQ(environment.entries()[2], nullptr);
}

TEST(Environment, HasNothingWhenItIsEmpty) {
  const unit::EnvironmentOf entries{};
  EXPECT_EQ(Environment(entries).value("A"), std::nullopt);
}

}  // namespace
}  // namespace quillstead::OS
