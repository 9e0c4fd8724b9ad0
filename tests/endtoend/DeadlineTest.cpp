#include "HookTest.h"

#include <deque>
#include <string>
#include <thread>
#include <vector>

namespace quillstead {
namespace {

// What a run takes beyond its 2.5 seconds is the machine's business; these bounds leave it as much
// again, and the sanitizers more.
constexpr std::int64_t longRun = isSanitized ? 10'000 : 5'000;
constexpr std::int64_t longRules = isSanitized ? 6'000 : 3'000;

class RunDeadline : public HookTest {
 protected:
  /// A run of each harness, all at once; each has a log of its own, and every other one asks for no
  /// card.
  [[nodiscard]] std::vector<HookEnd> runAll(const std::string& slot) const {
    std::deque<HookRun> runs;
    for (const Harness& harness : harnesses()) {
      HookStart start = starting(harness, slot);
      start.environment["QUILLSTEAD_HOOK_LOG"] = workspace.path(harness.name);
      start.environment["QUILLSTEAD_RULES_CARD"] = runs.size() % 2 == 0 ? "1" : "0";
      runs.emplace_back(start);
      runs.back().feed(harness.payload({}));
      runs.back().closeInput();
    }
    std::vector<HookEnd> ends;
    for (HookRun& run : runs) ends.push_back(run.finish());
    return ends;
  }

  [[nodiscard]] TelemetryRecord recordOf(const Harness& harness) const {
    const std::string log = contentOf(workspace.path(harness.name));
    const auto record = telemetryRecord(log.substr(0, log.find('\n')));
    EXPECT_TRUE(record && record->addsUp()) << log;
    return record.value_or(TelemetryRecord{});
  }

  void expectNoServerLives() const {
    for (const ServerCall& call : server.calls()) {
      awaitThat([&] { return !call.isAlive(); });
    }
  }

  /// Runs Codex's recall with its payload so late.
  [[nodiscard]] HookEnd runWithLatePayload(std::chrono::milliseconds delay) const {
    const HookStart start = starting(harness("codex"), "recall");
    HookRun run(start);
    run.feed("{");
    std::this_thread::sleep_for(delay);
    run.feed(R"("prompt":"x"})");
    return run.finish();
  }
};

TEST_F(RunDeadline, EndsARunWhoseServerSleepsForEver) {
  server.sleepForEver(rulesTool);
  server.sleepForEver(memoryTool);
  const auto ends = runAll("recall");
  for (std::size_t at = 0; at < ends.size(); ++at) {
    const Harness& harness = harnesses()[at];
    SCOPED_TRACE(harness.name);
    EXPECT_EQ(ends[at].output, harness.silentOutput());
    EXPECT_EQ(ends[at].status, 0);
    EXPECT_EQ(ends[at].error, "");
    const TelemetryRecord record = recordOf(harness);
    EXPECT_EQ(record.trail, "slot=recall rules=MISS:timeout cards=MISS:timeout");
    EXPECT_GE(*record.stage("rules"), 1'500);
    EXPECT_LT(*record.stage("rules"), longRules);
    EXPECT_GT(*record.stage("cards"), 0);
    EXPECT_GE(record.totalMilliseconds, 2'500);
    EXPECT_LT(record.totalMilliseconds, longRun);
  }
  expectNoServerLives();
}

TEST_F(RunDeadline, LeavesTheMemoryTimeWhenTheRulesTakeTooLong) {
  const std::string block = memoryBlock("", {"card"});
  server.sleepForEver(rulesTool);
  server.answer(memoryTool, block, cardsMeta({"card"}));
  const auto ends = runAll("");
  for (std::size_t at = 0; at < ends.size(); ++at) {
    const Harness& harness = harnesses()[at];
    SCOPED_TRACE(harness.name);
    EXPECT_THAT(ends[at].output, isAnswer(harness.envelope(block)));
    const TelemetryRecord record = recordOf(harness);
    EXPECT_EQ(record.trail, "rules=MISS:timeout cards=1");
    EXPECT_GE(*record.stage("rules"), 1'500);
    EXPECT_LT(*record.stage("rules"), longRules);
  }
  expectNoServerLives();
}

TEST_F(RunDeadline, GivesTheMemoryMoreTimeThanTheRules) {
  const std::string block = memoryBlock("", {"card"});
  server.answer(rulesTool, "", emptyMeta);
  server.answer(memoryTool, block, cardsMeta({"card"}));
  server.set(memoryTool, "delay", 1'600);
  const Harness& codex = harness("codex");
  EXPECT_THAT(run(codex, "recall", codex.payload({})).output, isAnswer(codex.envelope(block)));
  EXPECT_GE(*onlyRecord().stage("cards"), 1'600);
}

TEST_F(RunDeadline, LetsTheRulesTakeASecond) {
  server.answer(rulesTool, "R", rulesMeta);
  server.set(rulesTool, "delay", 1'000);
  const Harness& codex = harness("codex");
  EXPECT_THAT(run(codex, "rules", "{}").output, isAnswer(codex.envelope("R")));
}

TEST_F(RunDeadline, CountsFromTheStartOfTheRun) {
  server.sleepForEver(rulesTool);
  const HookEnd end = runWithLatePayload(std::chrono::milliseconds(1'500));
  EXPECT_EQ(end.output, harness("codex").silentOutput());
  const TelemetryRecord record = onlyRecord();
  EXPECT_EQ(record.trail, "slot=recall rules=MISS:timeout cards=MISS:timeout");
  EXPECT_GE(record.totalMilliseconds, 2'500);
  EXPECT_LT(record.totalMilliseconds, longRun);
  ASSERT_EQ(server.calls().size(), 1U) << "with the deadline spent, no server is started";
  EXPECT_EQ(server.calls().front().tool(), rulesTool);
}

TEST_F(RunDeadline, StartsNoServerWhenThePayloadComesTooLate) {
  server.answer(rulesTool, "R", rulesMeta);
  const HookEnd end = runWithLatePayload(std::chrono::milliseconds(2'600));
  EXPECT_EQ(end.output, harness("codex").silentOutput());
  EXPECT_EQ(end.error, "");
  EXPECT_EQ(onlyRecord().trail, "slot=recall rules=MISS:timeout cards=MISS:timeout");
  EXPECT_TRUE(server.calls().empty());
}

TEST_F(RunDeadline, PassesOverAnAnswerWhoseServerGoesOn) {
  server.answer(rulesTool, "R", rulesMeta);
  server.set(rulesTool, "linger", 600'000);
  EXPECT_EQ(run(harness("codex"), "rules", "{}").output, harness("codex").silentOutput());
  EXPECT_EQ(onlyRecord().trail, "slot=rules rules=MISS:timeout");
  expectNoServerLives();
}

TEST_F(RunDeadline, KillsAServerThatWillNotBeTerminated) {
  server.set("stubborn");
  server.sleepForEver(rulesTool);
  run(harness("codex"), "rules", "{}");
  ASSERT_EQ(server.calls().size(), 1U);
  expectNoServerLives();
}

TEST_F(RunDeadline, EndsAServerThatDoesNotReadALargePrompt) {
  server.set("unread");
  server.sleepForEver("any");
  const Harness& codex = harness("codex");
  const HookEnd end = run(codex, "recall", codex.payload({.prompt = std::string(5'000'000, 'p')}));
  EXPECT_EQ(end.output, codex.silentOutput());
  EXPECT_EQ(onlyRecord().trail, "slot=recall rules=MISS:timeout cards=MISS:timeout");
  expectNoServerLives();
}

}  // namespace
}  // namespace quillstead
