#include "server/Index/Database.h"
#include "server/endtoend/ProgramRun.h"
#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace quillstead::server::test {

namespace {

namespace fs = std::filesystem;

class ManyServers : public ::testing::Test {
 protected:
  [[nodiscard]] ProgramRun started(std::string_view tool, const std::string& arguments) const {
    return ProgramRun({.executable = serverProgram(),
                       .arguments = {},
                       .environment = stage.environment(),
                       .input = callRequest(2, tool, arguments) + "\n"});
  }

  [[nodiscard]] ProgramRun adding(const std::string& text, const std::string& title) const {
    return started("memory_add", R"({"cwd":)" + jsonText(stage.project()) + R"(,"title":)" +
                                     jsonText(title) + R"(,"text":)" + jsonText(text) + "}");
  }

  [[nodiscard]] ProgramRun asking(const std::string& prompt) const {
    return started("memory_get_relevant", R"({"cwd":)" + jsonText(stage.project()) +
                                              R"(,"prompt":)" + jsonText(prompt) + "}");
  }

  /// Kills the run at a moment between its start and a little after it would have ended, `usual`
  /// being the time that takes.
  void killAtSomeMoment(ProgramRun& run, std::chrono::microseconds usual) {
    std::uniform_int_distribution<std::int64_t> moment(0, usual.count() * 5 / 4);
    std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
    run.kill();
  }

  /// How long one undisturbed run takes.
  static std::chrono::microseconds timeOf(ProgramRun run) {
    const auto start = std::chrono::steady_clock::now();
    (void)run.finish();
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() -
                                                                 start);
  }

  /// The names of all card files, hidden ones left out.
  [[nodiscard]] std::set<std::string> names() const {
    std::set<std::string> all;
    for (const auto& entry : fs::directory_iterator(stage.path("project/.quillstead/memory"))) {
      const std::string name = entry.path().filename();
      if (!name.starts_with('.')) all.insert(name);
    }
    return all;
  }

  /// What every card file holds, hidden ones left out.
  [[nodiscard]] std::vector<std::string> cards() const {
    std::vector<std::string> texts;
    const std::string directory = stage.path("project/.quillstead/memory");
    if (!fs::exists(directory)) return texts;
    for (const auto& entry : fs::directory_iterator(directory)) {
      if (!entry.path().filename().string().starts_with('.')) {
        texts.push_back(unit::contentsOf(entry.path()));
      }
    }
    return texts;
  }

  /// On a busy machine so many large cards are indexed over several calls.
  void expectRecalled(const std::string& prompt, const std::string& title) const {
    constexpr int mostCalls = 100;
    std::vector<std::string> found;
    for (int call = 0; call < mostCalls && found.empty(); ++call) found = stage.recalled(prompt);
    EXPECT_THAT(found, ::testing::ElementsAre(title));
  }

  void expectSoundIndex() const {
    Database index = Database::open(stage.indexFile(), std::chrono::seconds(10));
    Statement check = index.prepare("PRAGMA integrity_check");
    ASSERT_EQ(check.step(), Statement::Step::row);
    EXPECT_EQ(check.text(0), "ok");
    EXPECT_TRUE(index.run("INSERT INTO cards (cards) VALUES ('integrity-check')"));
  }

  MemoryStage stage;
  std::mt19937 random{7};
};

TEST_F(ManyServers, LoseNoCardAndKeepTheIndexSound) {
  constexpr int pairs = 25;
  stage.writeProjectCard("first.md", "# First\n\nheron");
  std::vector<ProgramRun> adders;
  std::vector<ProgramRun> askers;
  for (int number = 0; number < pairs; ++number) {
    adders.push_back(
        adding("fact number" + std::to_string(number) + " of the heron", "Same title"));
    askers.push_back(asking("heron"));
  }
  for (ProgramRun& adder : adders) {
    const ProgramEnd end = adder.finish();
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    EXPECT_FALSE(answerIn(end.output.substr(0, end.output.find('\n'))).isError) << end.output;
  }
  for (ProgramRun& asker : askers) {
    const ProgramEnd end = asker.finish();
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.error, "");
    const Answer answer = answerIn(end.output.substr(0, end.output.find('\n')));
    EXPECT_EQ(answer.metaText("quillstead/replyKind"), "cards") << end.output;
  }
  const std::vector<std::string> texts = cards();
  ASSERT_EQ(texts.size(), pairs + 1U);
  for (int number = 0; number < pairs; ++number) {
    const std::string fact = "fact number" + std::to_string(number) + " of the heron";
    EXPECT_THAT(texts, ::testing::Contains(::testing::EndsWith("# Same title\n\n" + fact + "\n")));
    EXPECT_THAT(stage.recalled("number" + std::to_string(number)),
                ::testing::ElementsAre("Same title"));
  }
  expectSoundIndex();
}

TEST_F(ManyServers, LeaveTheOldOrTheNewStoreWhenKilledWhileAdding) {
  constexpr int rounds = 60;
  const std::string body(300'000, 'x');
  const auto usual = timeOf(adding(body + "end", "First"));
  int killedBefore = 0;
  int killedAfter = 0;
  for (int round = 0; round < rounds; ++round) {
    const std::set<std::string> before = names();
    ProgramRun adder = adding(body + "end", "Card " + std::to_string(round));
    killAtSomeMoment(adder, usual);
    const bool answered = !adder.finish().output.empty();
    const std::set<std::string> after = names();
    ASSERT_TRUE(std::includes(after.begin(), after.end(), before.begin(), before.end()));
    ASSERT_LE(after.size(), before.size() + 1);
    if (answered) {
      EXPECT_EQ(after.size(), before.size() + 1);
    }
    ++(after.size() == before.size() ? killedBefore : killedAfter);
  }
  for (const std::string& text : cards()) {
    ASSERT_TRUE(text.ends_with("xend\n")) << text.size();
    ASSERT_GT(text.size(), body.size());
  }
  EXPECT_GT(killedBefore, 0);
  EXPECT_GT(killedAfter, 0);
  EXPECT_FALSE(stage.call("memory_add", R"({"text":"heron"})").isError);
  expectRecalled("heron", "heron");
}

TEST_F(ManyServers, LeaveAUsableIndexWhenKilledWhileIndexing) {
  constexpr int rounds = 40;
  std::chrono::microseconds usual{0};
  for (int round = 0; round < rounds; ++round) {
    for (int number = 0; number < 40; ++number) {
      stage.writeProjectCard("n" + std::to_string(number) + ".md",
                             "# Round " + std::to_string(round) + "\n\nheron" +
                                 std::to_string(round) + " " + std::string(500, 'x'));
    }
    if (round == 0) {
      usual = timeOf(asking("heron0"));
      continue;
    }
    ProgramRun asker = asking("heron" + std::to_string(round));
    killAtSomeMoment(asker, usual);
    (void)asker.finish();
  }
  EXPECT_EQ(stage.recalled("heron" + std::to_string(rounds - 1)).size(), 8U);
  EXPECT_TRUE(stage.recalled("heron0").empty());
  expectSoundIndex();
}

}  // namespace

}  // namespace quillstead::server::test
