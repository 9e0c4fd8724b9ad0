#include "server/Session/SessionMemory.h"
#include "server/helpers/MemoryStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace quillstead::server::test {

namespace {

using namespace std::chrono_literals;

/// One session whose time the test moves.
class SessionMemoryTest : public ::testing::Test {
 protected:
  SessionMemoryTest() {
    for (const std::string& entry : stage.environment()) entries_.push_back(entry.c_str());
    entries_.push_back(nullptr);
  }

  [[nodiscard]] OS::Environment environment() const { return OS::Environment(entries_.data()); }

  [[nodiscard]] std::optional<SessionMemory> session() const {
    return SessionMemory::of(caller, environment(), now);
  }

  /// What a call of one prompt is given: "whole" or "pointer".
  std::string rulesFor(std::string_view rules) {
    auto memory = session();
    if (!memory) return "none";
    const bool known = memory->knowsRules(rules);
    if (known) {
      memory->pointerShown(100);
    } else {
      memory->rulesShown(rules, 100);
    }
    memory->keep();
    return known ? "pointer" : "whole";
  }

  void nextPrompt() { now += 10s; }

  /// Whether a card comes, which is then noted as shown.
  bool comes(std::string_view text) {
    auto memory = session();
    EXPECT_TRUE(memory);
    const bool known = memory->knowsCard("/m/a.md", text);
    if (!known) memory->cardShown("/m/a.md", text);
    memory->keep();
    return !known;
  }

  void transcribe(std::string_view text) {
    caller.transcriptPath = stage.path("transcript.jsonl");
    std::ofstream(*caller.transcriptPath, std::ios::app) << text;
  }

  MemoryStage stage;
  SessionMemory::Caller caller{.sessionID = "s", .transcriptPath = {}};
  SessionMemory::Clock::time_point now = SessionMemory::Clock::now();

 private:
  std::vector<const char*> entries_;
};

TEST_F(SessionMemoryTest, TellsRulesOnceAndThenPointsToThem) {
  EXPECT_EQ(rulesFor("r"), "whole");
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "pointer");
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "pointer");
  nextPrompt();
  EXPECT_EQ(rulesFor("other"), "whole") << "they changed";
  nextPrompt();
  EXPECT_EQ(rulesFor("other"), "pointer");
}

TEST_F(SessionMemoryTest, GivesAllHooksOfOnePromptTheSame) {
  for (const auto wait : {0ms, 1'000ms, 3'999ms, 0ms}) {
    EXPECT_EQ(rulesFor("r"), "whole");
    now += wait;
  }
  now += 1ms;
  EXPECT_EQ(rulesFor("r"), "pointer") << "five seconds after the first";
  EXPECT_EQ(rulesFor("r"), "pointer");
  EXPECT_EQ(rulesFor("changed"), "whole");
  EXPECT_EQ(rulesFor("changed"), "whole");
}

TEST_F(SessionMemoryTest, TellsRulesAgainAfterTwentyPrompts) {
  EXPECT_EQ(rulesFor("r"), "whole");
  for (int prompt = 2; prompt <= 20; ++prompt) {
    nextPrompt();
    EXPECT_EQ(rulesFor("r"), "pointer") << prompt;
  }
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "whole");
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "pointer");
}

TEST_F(SessionMemoryTest, TellsRulesAgainAfterAnHour) {
  EXPECT_EQ(rulesFor("r"), "whole");
  now += 59min;
  EXPECT_EQ(rulesFor("r"), "pointer");
  now += 1min;
  EXPECT_EQ(rulesFor("r"), "whole");
}

TEST_F(SessionMemoryTest, StaysWithThePointerWhenTheHourEndsWithinAPrompt) {
  EXPECT_EQ(rulesFor("r"), "whole");
  now += 1h - 1s;
  EXPECT_EQ(rulesFor("r"), "pointer");
  now += 2s;
  EXPECT_EQ(rulesFor("r"), "pointer") << "another hook of the same prompt";
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "whole");
}

TEST_F(SessionMemoryTest, TellsRulesAgainWhenTheClockWentBack) {
  EXPECT_EQ(rulesFor("r"), "whole");
  now -= 30s;
  EXPECT_EQ(rulesFor("r"), "whole");
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "pointer") << "it goes on from there";
}

TEST_F(SessionMemoryTest, ForgetsEverythingAtACompaction) {
  transcribe("{}\n");
  EXPECT_EQ(rulesFor("r"), "whole");
  EXPECT_TRUE(comes("text"));
  nextPrompt();
  transcribe("{\"more\":1}\n");
  EXPECT_EQ(rulesFor("r"), "pointer");
  EXPECT_FALSE(comes("text"));
  nextPrompt();
  transcribe("{\"type\":\"system\",\"subtype\":\"compact_boundary\"}\n");
  EXPECT_EQ(rulesFor("r"), "whole");
  EXPECT_TRUE(comes("text"));
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "pointer") << "the compaction is behind it";
}

TEST_F(SessionMemoryTest, DoesNotTakeAnEarlierCompactionForANewOne) {
  transcribe("{\"type\":\"compacted\"}\n");
  EXPECT_EQ(rulesFor("r"), "whole");
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "pointer");
}

TEST_F(SessionMemoryTest, TakesAnotherOrAShorterTranscriptForANewContext) {
  transcribe("{\"some\":\"text\"}\n");
  EXPECT_EQ(rulesFor("r"), "whole");
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "pointer");
  stage.write("transcript.jsonl", "{}\n");
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "whole");
  nextPrompt();
  caller.transcriptPath = stage.path("other.jsonl");
  EXPECT_EQ(rulesFor("r"), "whole");
  nextPrompt();
  caller.transcriptPath = stage.path("transcript.jsonl");
  EXPECT_EQ(rulesFor("r"), "pointer") << "back in the first";
}

TEST_F(SessionMemoryTest, BringsACardAgainWhenItChangedOrThirtyPromptsPassed) {
  EXPECT_TRUE(comes("text"));
  EXPECT_TRUE(comes("text")) << "another hook of the same prompt";
  for (int prompt = 2; prompt <= 30; ++prompt) {
    nextPrompt();
    EXPECT_FALSE(comes("text")) << prompt;
  }
  nextPrompt();
  EXPECT_TRUE(comes("text"));
  nextPrompt();
  EXPECT_TRUE(comes("changed"));
  nextPrompt();
  EXPECT_FALSE(comes("changed"));
  EXPECT_FALSE(session()->knowsCard("/m/b.md", "changed"));
}

TEST_F(SessionMemoryTest, KnowsOfNoRoomForCardsBeforeThePromptsRulesAreShown) {
  EXPECT_EQ(session()->room(), 0U);
  EXPECT_EQ(rulesFor("r"), "whole");
  EXPECT_EQ(session()->room(), 100U);
  nextPrompt();
  EXPECT_EQ(session()->room(), 0U);
  EXPECT_EQ(rulesFor("r"), "pointer");
  EXPECT_EQ(session()->room(), 100U);
}

TEST_F(SessionMemoryTest, KeepsSessionsApart) {
  EXPECT_EQ(rulesFor("r"), "whole");
  nextPrompt();
  caller.sessionID = "t";
  EXPECT_EQ(rulesFor("r"), "whole");
  caller.sessionID = "s";
  EXPECT_EQ(rulesFor("r"), "pointer");
}

TEST_F(SessionMemoryTest, IsAbsentWithoutASessionAPlaceOrTheWish) {
  for (const auto& id : {std::optional<std::string>(), std::optional<std::string>(" ")}) {
    EXPECT_FALSE(SessionMemory::of({.sessionID = id, .transcriptPath = {}}, environment(), now));
  }
  const std::string home = "HOME=" + stage.path("home");
  const std::vector<const char*> always{home.c_str(), "QUILLSTEAD_REPEAT=always", nullptr};
  EXPECT_FALSE(SessionMemory::of(caller, OS::Environment(always.data()), now));
  const std::vector<const char*> never{home.c_str(), "QUILLSTEAD_REPEAT=", nullptr};
  EXPECT_TRUE(SessionMemory::of(caller, OS::Environment(never.data()), now));
  const std::vector<const char*> nowhere{"HOME=/dev/null", "XDG_CACHE_HOME=/dev/null/x", nullptr};
  EXPECT_FALSE(SessionMemory::of(caller, OS::Environment(nowhere.data()), now));
}

TEST_F(SessionMemoryTest, TellsEverythingWhenItsFileWasLostOrDamaged) {
  EXPECT_EQ(rulesFor("r"), "whole");
  ASSERT_EQ(stage.sessionFiles().size(), 1U);
  const std::string file = stage.sessionFiles().front();
  const std::string sound = unit::contentsOf(file);
  for (const std::string& damaged :
       {std::string(), std::string("x"), sound.substr(0, sound.size() - 3),
        std::string(1'000'000, 'x'), std::string(100, '\0'), sound + "end\n"}) {
    nextPrompt();
    unit::writeFile(file, damaged);
    EXPECT_EQ(rulesFor("r"), "whole");
    nextPrompt();
    EXPECT_EQ(rulesFor("r"), "pointer");
  }
  std::filesystem::remove(file);
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "whole");
}

TEST_F(SessionMemoryTest, FollowsNoLinkAndWritesNobodyElsesFile) {
  EXPECT_EQ(rulesFor("r"), "whole");
  const std::string file = stage.sessionFiles().front();
  std::filesystem::remove(file);
  stage.write("victim", "precious");
  std::filesystem::create_symlink(stage.path("victim"), file);
  EXPECT_EQ(rulesFor("r"), "none");
  EXPECT_EQ(unit::contentsOf(stage.path("victim")), "precious");
  std::filesystem::remove(file);
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(rulesFor("r"), "none");
}

TEST_F(SessionMemoryTest, DoesNotWaitLongForAServerThatHoldsTheFile) {
  EXPECT_EQ(rulesFor("r"), "whole");
  {
    const auto held = session();
    ASSERT_TRUE(held);
    EXPECT_EQ(rulesFor("r"), "none");
  }
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "pointer");
}

TEST_F(SessionMemoryTest, IsSmallAndTheUsersAlone) {
  for (int card = 0; card < 1'000; ++card) {
    auto memory = session();
    ASSERT_TRUE(memory);
    memory->cardShown("/m/" + std::to_string(card), "text");
    memory->keep();
  }
  const std::string file = stage.sessionFiles().front();
  EXPECT_LE(std::filesystem::file_size(file), 20'000U);
  struct stat status {};
  ASSERT_EQ(stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  EXPECT_TRUE(session()->knowsPlace("/m/999"));
  EXPECT_TRUE(session()->knowsPlace("/m/700")) << "the last 300 are kept";
  EXPECT_FALSE(session()->knowsPlace("/m/1"));
}

TEST_F(SessionMemoryTest, RemovesSessionsThatAreAWeekOld) {
  EXPECT_EQ(rulesFor("r"), "whole");
  const std::string old = stage.sessionFiles().front();
  caller.sessionID = "young";
  EXPECT_EQ(rulesFor("r"), "whole");
  std::filesystem::last_write_time(old, std::filesystem::file_time_type::clock::now() - 24h * 8);
  caller.sessionID = "new";
  EXPECT_EQ(rulesFor("r"), "whole");
  EXPECT_FALSE(std::filesystem::exists(old));
  EXPECT_EQ(stage.sessionFiles().size(), 2U);
  stage.write("elsewhere", "");
  std::filesystem::rename(stage.path("elsewhere"), old);
  std::filesystem::last_write_time(old, std::filesystem::file_time_type::clock::now() - 24h * 8);
  nextPrompt();
  EXPECT_EQ(rulesFor("r"), "pointer");
  EXPECT_TRUE(std::filesystem::exists(old)) << "a session that goes on does not look for them";
}

}  // namespace

}  // namespace quillstead::server::test
