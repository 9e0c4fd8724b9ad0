#include "server/Index/IndexTables.h"
#include "server/Index/SeenFiles.h"
#include "server/Index/Survey.h"
#include "unit/helpers/Files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quillstead::server {

namespace {

class SeenFilesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(IndexTables::create(database));
    for (const char* const name : {"a.md", "a longer name.md"}) write(name, "text");
    survey.look(Survey::Depth::stamps, OS::MonotonicClock::time_point::max());
    ASSERT_EQ(survey.files().size(), 2U);
    ASSERT_TRUE(SeenFiles::keep(database, survey.files()));
  }

  void write(const std::string& name, const std::string& text) const {
    unit::writeFile(place / ("store/memory/" + name), text);
  }

  [[nodiscard]] bool areUnchanged() { return SeenFiles::areUnchanged(database, 0, survey); }

  [[nodiscard]] Survey opened() const {
    std::filesystem::create_directories(place / "store/memory");
    return Survey::opened(
        {.personal = std::nullopt,
         .project = Store{.kind = Store::Kind::project, .root = place / "store"}});
  }

  const unit::TemporaryDirectory place;
  Database database = Database::inMemory();
  Survey survey = opened();
};

TEST_F(SeenFilesTest, AreUnchangedUntilOneIsWrittenOrRemoved) {
  EXPECT_TRUE(areUnchanged());
  write("a longer name.md", "other text");
  EXPECT_FALSE(areUnchanged());
  write("a longer name.md", "text");
  survey.look(Survey::Depth::stamps, OS::MonotonicClock::time_point::max());
  ASSERT_TRUE(SeenFiles::keep(database, survey.files()));
  EXPECT_TRUE(areUnchanged());
  std::filesystem::remove(place / "store/memory/a.md");
  EXPECT_FALSE(areUnchanged());
}

TEST_F(SeenFilesTest, CountAsChangedWhenWhatIsStoredIsDamaged) {
  const std::vector<Survey::File> one(survey.files().begin(), survey.files().begin() + 1);
  ASSERT_TRUE(SeenFiles::keep(database, one));
  ASSERT_TRUE(areUnchanged());
  Statement read = database.prepare("SELECT files FROM seen WHERE part = 0");
  ASSERT_EQ(read.step(), Statement::Step::row);
  const std::string whole(read.text(0));
  read.reset();
  Statement store = database.prepare("UPDATE seen SET files = ?");
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string damaged = whole;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x7F);
    ASSERT_TRUE(store.bind(1, damaged).run());
    EXPECT_FALSE(areUnchanged()) << at;
    damaged = whole.substr(0, std::max<std::size_t>(at, 1));
    ASSERT_TRUE(store.bind(1, damaged).run());
    EXPECT_FALSE(areUnchanged()) << at;
  }
}

}  // namespace

}  // namespace quillstead::server
